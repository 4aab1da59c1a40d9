#include "language/language_names.h"

#include <algorithm>

#include "base/text.h"
#include "storage/app_config.h"

namespace ovrin {

std::string englishLanguageName(std::string_view tag) {
    if (auto name = text::englishNameOfIdentifier(tag)) return *std::move(name);
    if (auto name = text::englishNameOfLanguageCode(AppConfig::normalizeLanguageTag(tag))) return *std::move(name);
    return std::string(tag);
}

std::string displayLanguageName(std::string_view tag) {
    const std::string normalized = AppConfig::normalizeLanguageTag(tag);
    const auto& options = AppConfig::languageOptions;
    const auto option = std::ranges::find(options, normalized, &AppConfig::LanguageOption::tag);
    if (option != options.end()) return std::string(option->name);
    if (auto name = text::englishNameOfIdentifier(tag)) return *std::move(name);
    return text::englishNameOfLanguageCode(normalized).value_or(normalized);
}

}  // namespace ovrin
