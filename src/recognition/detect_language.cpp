#include "recognition/detect_language.h"

#include "base/text.h"

namespace ovrin {

std::optional<std::string> detectLanguage(std::string_view text, const LanguageIdentifier& identifier) {
    const std::string_view trimmed = text::trimmed(text);
    if (text::characterCount(trimmed, 2) < 2) return std::nullopt;
    return identifier.dominantLanguage(trimmed);
}

}  // namespace ovrin
