// What a reader made of one piece of a line: characters with their places and how sure it is of each.
#pragma once

#include <string>
#include <vector>

namespace ovrin {

struct ReadCharacter {
    char32_t code = 0;
    float confidence = 0;  // 0..1
    double left = 0;       // pixels from the left edge of the piece; what the reader believes, only roughly right
    double right = 0;
    double spaceBefore = 0;  // 0..1, how sure the reader is that a space stands before this character

    double center() const { return (left + right) / 2; }
};

using Reading = std::vector<ReadCharacter>;

std::string textOf(const Reading& reading);
double meanConfidence(const Reading& reading);

}  // namespace ovrin
