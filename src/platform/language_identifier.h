// Seam: the statistical language identifier of the platform.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

class LanguageIdentifier {
public:
    virtual ~LanguageIdentifier() = default;

    // The BCP-47 tag of the language most likely to dominate the text (UTF-8), e.g. "en", "ja", "zh-Hans", "zh-Hant";
    // none when no language stands out. Any thread; calls share nothing.
    virtual std::optional<std::string> dominantLanguage(std::string_view text) const = 0;
};

}  // namespace ovrin
