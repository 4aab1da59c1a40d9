#include "language/language_names.h"

#include "base/text.h"
#include "storage/app_config.h"

namespace ovrin {

std::string englishLanguageName(std::string_view tag) {
    if (auto name = text::englishNameOfIdentifier(tag)) return *std::move(name);
    if (auto name = text::englishNameOfLanguageCode(AppConfig::normalizeLanguageTag(tag))) return *std::move(name);
    return std::string(tag);
}

}  // namespace ovrin
