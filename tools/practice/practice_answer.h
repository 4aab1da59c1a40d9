// What the practice service has to say: it knows the sentences of the demonstration page, and no model stands behind
// it. Translations are what was asked for and nothing else; the other answers, the name of the model and the response's
// Server header say so.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ovrin {

struct PracticeMessage {
    std::string role;  // "system", "user" or "assistant"
    std::string content;
};

// A request to translate is answered with one line for each line, so that each finds its place over a picture: what the
// page says in that language, or for lines that are not from the page the line itself, marked. Anything else is
// answered with the service's name and what was asked.
std::string practiceAnswer(std::span<const PracticeMessage> messages);

// The answer in the pieces that it streams in: a word, or two characters of a script without spaces.
std::vector<std::string> practicePieces(std::string_view answer);

}  // namespace ovrin
