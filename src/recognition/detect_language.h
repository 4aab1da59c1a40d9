// The language of a whole text, as recognition results carry it and translation decides by it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/language_identifier.h"

namespace ovrin {

// The BCP-47 tag of the dominant language of the text (UTF-8) without the white space and line breaks at its ends;
// none for fewer than two user-perceived characters, and when no language stands out. Any thread.
std::optional<std::string> detectLanguage(std::string_view text, const LanguageIdentifier& identifier);

}  // namespace ovrin
