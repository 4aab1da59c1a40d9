// How an answer grows while it streams.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace ovrin {

struct AnswerChange {
    enum class Kind : std::uint8_t {
        appended,  // the text comes behind what is there
        replaced,  // the text is all there is: what was there before was no answer
        thinking,  // the model has begun to think, and has no text yet
    };

    Kind kind = Kind::appended;
    std::string text = {};

    bool operator==(const AnswerChange&) const = default;

    void applyTo(std::string& answer) const {
        if (kind == Kind::replaced) answer.clear();
        answer += text;
    }
};

}  // namespace ovrin
