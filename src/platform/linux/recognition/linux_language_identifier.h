// Tells the language of a text: by its script where that is enough, else with the Compact Language Detector 2, which
// frequent words help where the text is too short for it.
#pragma once

#include "platform/language_identifier.h"

namespace ovrin {

class LinuxLanguageIdentifier : public LanguageIdentifier {
public:
    std::optional<std::string> dominantLanguage(std::string_view text) const override;
};

}  // namespace ovrin
