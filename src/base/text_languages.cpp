// The language questions of text.h: English names of languages and the languages that the user prefers.
#include <algorithm>
#include <array>

#include <unicode/locdspnm.h>
#include <unicode/locid.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include "base/text.h"

namespace ovrin::text {
namespace {

using LocaleBuffer = std::array<char, ULOC_FULLNAME_CAPACITY>;

bool consistsOf(std::string_view text, bool (*belongs)(char)) {
    return !text.empty() && std::all_of(text.begin(), text.end(), belongs);
}

bool isAsciiLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isAsciiDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLanguage(std::string_view text) {
    return (text.size() == 2 || text.size() == 3) && consistsOf(text, isAsciiLetter);
}

bool isRegion(std::string_view text) {
    return (text.size() == 2 && consistsOf(text, isAsciiLetter)) ||
           (text.size() == 3 && consistsOf(text, isAsciiDigit));
}

// A locale as the environment spells it: language[_REGION][.codeset][@modifier].
struct PosixLocale {
    std::string language;
    std::string region;
    std::string modifier;
};

PosixLocale posixLocale(std::string_view name) {
    PosixLocale locale;
    if (const std::size_t at = name.find('@'); at != std::string_view::npos) {
        locale.modifier = asciiLowercased(name.substr(at + 1));
        name = name.substr(0, at);
    }
    name = name.substr(0, name.find('.'));
    const std::size_t separator = name.find_first_of("_-");
    locale.language = asciiLowercased(name.substr(0, separator));
    if (separator != std::string_view::npos) locale.region = name.substr(separator + 1);
    return locale;
}

std::string likelyScript(const std::string& language, const std::string& region) {
    const std::string identifier = region.empty() ? language : language + "_" + region;
    UErrorCode status = U_ZERO_ERROR;
    LocaleBuffer whole{};
    uloc_addLikelySubtags(identifier.c_str(), whole.data(), static_cast<std::int32_t>(whole.size()), &status);
    LocaleBuffer script{};
    uloc_getScript(whole.data(), script.data(), static_cast<std::int32_t>(script.size()), &status);
    return U_SUCCESS(status) ? std::string(script.data()) : std::string();
}

// The script that a tag has to name; empty where the language alone tells it. Chinese always names its own.
std::string namedScript(const PosixLocale& locale) {
    if (locale.modifier == "latin") return "Latn";
    if (locale.modifier == "cyrillic") return "Cyrl";
    if (locale.modifier == "devanagari") return "Deva";
    std::string script = likelyScript(locale.language, locale.region);
    if (locale.language == "zh" || script != likelyScript(locale.language, "")) return script;
    return {};
}

// None for C, POSIX and whatever is no locale.
std::optional<std::string> languageTag(std::string_view name) {
    const PosixLocale locale = posixLocale(name);
    if (!isLanguage(locale.language)) return std::nullopt;
    std::string tag = locale.language;
    if (const std::string script = namedScript(locale); !script.empty()) tag += "-" + script;
    if (isRegion(locale.region)) tag += "-" + locale.region;
    return tag;
}

bool isPortable(std::string_view locale) {
    return locale == "C" || locale == "POSIX";
}

// The locale of messages as glibc finds it; C when nothing is set.
std::string messageLocale(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (auto locale = environment.value(name)) return *locale;
    }
    return "C";
}

void appendOnce(std::vector<std::string>& tags, std::optional<std::string> tag) {
    if (tag && std::find(tags.begin(), tags.end(), *tag) == tags.end()) tags.push_back(std::move(*tag));
}

}  // namespace

std::optional<std::string> englishNameOfIdentifier(std::string_view identifier) {
    std::string tag(identifier);
    std::replace(tag.begin(), tag.end(), '_', '-');
    UErrorCode status = U_ZERO_ERROR;
    LocaleBuffer locale{};
    std::int32_t parsed = 0;
    uloc_forLanguageTag(tag.c_str(), locale.data(), static_cast<std::int32_t>(locale.size()), &parsed, &status);
    if (U_FAILURE(status) || static_cast<std::size_t>(parsed) != identifier.size()) return std::nullopt;
    if (!englishNameOfLanguageCode(identifier)) return std::nullopt;

    const std::unique_ptr<icu::LocaleDisplayNames> names(
        icu::LocaleDisplayNames::createInstance(icu::Locale::getUS(), ULDN_DIALECT_NAMES));
    icu::UnicodeString name;
    names->localeDisplayName(locale.data(), name);
    std::string result;
    return name.toUTF8String(result);
}

std::optional<std::string> englishNameOfLanguageCode(std::string_view code) {
    const std::string language(code.substr(0, code.find_first_of("-_")));
    if (!consistsOf(language, isAsciiLetter)) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    std::array<UChar, ULOC_FULLNAME_CAPACITY> name{};
    const std::int32_t length = uloc_getDisplayLanguage(language.c_str(), "en_US", name.data(),
                                                        static_cast<std::int32_t>(name.size()), &status);
    // An unknown code would be answered with the code itself, which the status gives away.
    if (U_FAILURE(status) || status == U_USING_DEFAULT_WARNING || length == 0) return std::nullopt;
    std::string result;
    return icu::UnicodeString(name.data(), length).toUTF8String(result);
}

std::vector<std::string> preferredLanguages(const Environment& environment) {
    std::vector<std::string> tags;
    const std::string locale = messageLocale(environment);
    const std::string list = environment.value("LANGUAGE").value_or("");
    if (!isPortable(locale) && !list.empty()) {
        std::string_view rest = list;
        while (!rest.empty()) {
            const std::string_view name = rest.substr(0, rest.find(':'));
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
            if (isPortable(name)) break;  // untranslated from here on
            appendOnce(tags, languageTag(name));
        }
    }
    if (tags.empty()) appendOnce(tags, languageTag(locale));
    return tags;
}

}  // namespace ovrin::text
