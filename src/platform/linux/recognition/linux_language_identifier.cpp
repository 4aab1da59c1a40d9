#include "platform/linux/recognition/linux_language_identifier.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "base/script.h"
#include "han_variants.h"
#include "platform/linux/recognition/short_text_language.h"

namespace ovrin {
namespace {

// Han written in only one of the two Chinese standards. Characters that both share are neither.
bool isTraditionalOnly(UChar32 character) {
    return std::ranges::binary_search(traditionalOnly, character);
}

bool isSimplifiedOnly(UChar32 character) {
    return std::ranges::binary_search(simplifiedOnly, character);
}

struct LetterCounts {
    std::map<Script, std::size_t> scripts;
    std::size_t all = 0, traditional = 0, simplified = 0;

    bool isMostly(Script script) const { return of(script) * 2 > all; }
    std::size_t of(Script script) const { return scripts.contains(script) ? scripts.at(script) : 0; }
};

LetterCounts countLetters(const icu::UnicodeString& text) {
    LetterCounts counts;
    for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        if (!u_isalpha(character)) continue;
        ++counts.all;
        ++counts.scripts[scriptOf(static_cast<char32_t>(character))];
        counts.traditional += isTraditionalOnly(character) ? 1 : 0;
        counts.simplified += isSimplifiedOnly(character) ? 1 : 0;
    }
    return counts;
}

// One East Asian character says about as much as half a word of letters.
constexpr std::size_t lettersPerCharacter = 5;

std::optional<std::string> eastAsianLanguage(const LetterCounts& counts) {
    const std::size_t han = counts.of(Script::han);
    const std::size_t kana = counts.of(Script::kana);
    const std::size_t hangul = counts.of(Script::hangul);
    const std::size_t bopomofo = counts.of(Script::bopomofo);
    const std::size_t characters = han + kana + hangul + bopomofo;
    if (characters * lettersPerCharacter < counts.all - characters || characters == 0) return std::nullopt;
    if (hangul >= kana && hangul * 2 >= han && hangul > 0) return "ko";
    // Japanese prose is half kana; a single の as decoration does not make Chinese Japanese.
    if (kana > 0 && kana * 8 >= han) return "ja";
    if (bopomofo > 0 || counts.traditional > counts.simplified) return "zh-Hant";
    return "zh-Hans";
}

std::string tagOf(CLD2::Language language) {
    std::string code = CLD2::LanguageCode(language);
    if (code == "zh") return "zh-Hans";
    if (code == "iw") return "he";
    if (code == "no") return "nb";
    return code;
}

// What the detector makes of the text.
struct Detection {
    std::string language{};   // BCP-47 tag; empty: of none
    bool isReliable = false;  // as the detector itself says
    double evidence = 0;      // the sum of its scores
};

enum class Effort : int {
    usual = 0,
    best = CLD2::kCLDFlagBestEffort
};  // best: it also guesses, and calls that reliable

Detection detect(const std::string& text, Effort effort) {
    std::array<CLD2::Language, 3> languages{};
    std::array<int, 3> percents{};
    std::array<double, 3> scores{};  // for each 1024 bytes
    int textBytes = 0;
    Detection detection;
    const CLD2::CLDHints hints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    CLD2::ExtDetectLanguageSummary(text.data(), static_cast<int>(text.size()), true, &hints, static_cast<int>(effort),
                                   languages.data(), percents.data(), scores.data(), nullptr, &textBytes,
                                   &detection.isReliable);
    if (languages[0] == CLD2::UNKNOWN_LANGUAGE || languages[0] == CLD2::TG_UNKNOWN_LANGUAGE) return {};
    detection.language = tagOf(languages[0]);
    detection.evidence = scores[0] * textBytes / 1024;
    return detection;
}

// The detector was trained on pages, and calls its finding reliable when three words speak for it. On
// tests/platform/language_texts.txt 27 of 175 such findings are wrong; the strongest of those has an evidence of 41.
constexpr double evidenceOfCertainty = 42;
// What one unit of it counts beside words (see short_text_language.h).
constexpr double weightOfEvidence = 0.015;

std::optional<std::string> latinLanguage(const icu::UnicodeString& text, const std::string& utf8) {
    const Detection detection = detect(utf8, Effort::usual);
    if (detection.isReliable && detection.evidence >= evidenceOfCertainty) return detection.language;
    LanguageEvidence evidence = evidenceIn(text);
    if (detection.isReliable && !detection.language.empty()) {
        evidence[detection.language] += weightOfEvidence * detection.evidence;
    }
    return strongest(evidence);
}

// Few Cyrillic letters: Russian unless a letter says otherwise.
std::string shortCyrillicLanguage(const icu::UnicodeString& text) {
    for (const char16_t letter : {u'і', u'ї', u'є', u'ґ'}) {
        if (text.indexOf(letter) >= 0) return "uk";
    }
    return "ru";
}

}  // namespace

std::optional<std::string> LinuxLanguageIdentifier::dominantLanguage(std::string_view text) const {
    const auto unicode = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    const LetterCounts counts = countLetters(unicode);
    if (counts.all == 0) return std::nullopt;
    if (auto language = eastAsianLanguage(counts)) return language;

    std::string clean;  // as valid UTF-8
    unicode.toUTF8String(clean);
    if (counts.isMostly(Script::latin)) return latinLanguage(unicode, clean);
    const Detection detection = detect(clean, Effort::best);
    constexpr std::size_t shortText = 60;  // letters
    if (counts.isMostly(Script::cyrillic) && counts.of(Script::cyrillic) < shortText &&
        !detect(clean, Effort::usual).isReliable)
        return shortCyrillicLanguage(unicode);
    if (detection.language.empty()) return std::nullopt;
    return detection.language;
}

}  // namespace ovrin
