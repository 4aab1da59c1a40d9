// What the practice service has to say: it knows the sentences of the demonstration page, and no model stands behind
// it. Every answer says so.
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

// The name by which the service calls itself, in the language of the tag: Chinese for Chinese, else English.
std::string_view practiceName(std::string_view languageTag);

// A request to translate is answered line by line with what the page says in that language; lines that are not from
// the page come back unchanged and marked. Anything else is answered with what was asked.
std::string practiceAnswer(std::span<const PracticeMessage> messages);

// The answer in the pieces that it streams in: a word, or two characters of a script without spaces.
std::vector<std::string> practicePieces(std::string_view answer);

}  // namespace ovrin
