// A language identifier that gives one answer and remembers the last question.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/language_identifier.h"

namespace ovrin {

class FakeLanguageIdentifier final : public LanguageIdentifier {
public:
    std::optional<std::string> answer;
    mutable std::optional<std::string> lastText;

    std::optional<std::string> dominantLanguage(std::string_view text) const override {
        lastText = text;
        return answer;
    }
};

}  // namespace ovrin
