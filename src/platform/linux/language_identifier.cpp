#include "platform/linux/language_identifier.h"

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include "han_variants.h"

namespace ovrin {
namespace {

// Han written in only one of the two Chinese standards. Characters that both share are neither.
bool isTraditionalOnly(UChar32 character) {
    return std::ranges::binary_search(traditionalOnly, character);
}

bool isSimplifiedOnly(UChar32 character) {
    return std::ranges::binary_search(simplifiedOnly, character);
}

struct ScriptCounts {
    std::size_t han = 0, kana = 0, hangul = 0, bopomofo = 0, cyrillic = 0, latin = 0, others = 0;
    std::size_t traditional = 0, simplified = 0;

    std::size_t all() const { return han + kana + hangul + bopomofo + cyrillic + latin + others; }
};

ScriptCounts countScripts(const icu::UnicodeString& text) {
    ScriptCounts counts;
    for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        if (!u_isalpha(character)) continue;
        UErrorCode status = U_ZERO_ERROR;
        switch (uscript_getScript(character, &status)) {
            case USCRIPT_HAN:
                ++counts.han;
                break;
            case USCRIPT_HIRAGANA:
            case USCRIPT_KATAKANA:
                ++counts.kana;
                break;
            case USCRIPT_HANGUL:
                ++counts.hangul;
                break;
            case USCRIPT_BOPOMOFO:
                ++counts.bopomofo;
                break;
            case USCRIPT_CYRILLIC:
                ++counts.cyrillic;
                break;
            case USCRIPT_LATIN:
                ++counts.latin;
                break;
            default:
                ++counts.others;
        }
        counts.traditional += isTraditionalOnly(character) ? 1 : 0;
        counts.simplified += isSimplifiedOnly(character) ? 1 : 0;
    }
    return counts;
}

// One East Asian character says about as much as half a word of letters.
constexpr std::size_t lettersPerCharacter = 5;

std::optional<std::string> eastAsianLanguage(const ScriptCounts& counts) {
    const std::size_t characters = counts.han + counts.kana + counts.hangul + counts.bopomofo;
    if (characters * lettersPerCharacter < counts.latin + counts.cyrillic + counts.others || characters == 0)
        return std::nullopt;
    if (counts.hangul >= counts.kana && counts.hangul * 2 >= counts.han && counts.hangul > 0) return "ko";
    // Japanese prose is half kana; a single の as decoration does not make Chinese Japanese.
    if (counts.kana > 0 && counts.kana * 8 >= counts.han) return "ja";
    if (counts.bopomofo > 0 || counts.traditional > counts.simplified) return "zh-Hant";
    return "zh-Hans";
}

std::string tagOf(CLD2::Language language) {
    std::string code = CLD2::LanguageCode(language);
    if (code == "zh") return "zh-Hans";
    if (code == "iw") return "he";
    if (code == "no") return "nb";
    return code;
}

// The detector was trained on pages: in short texts it takes few rare trigrams for a rare language. Words that are
// among the most frequent of a language say more there.
struct FrequentWords {
    const char* language;
    std::set<std::u16string_view> words;
};

const std::array<FrequentWords, 10>& frequentWords() {
    static const std::array<FrequentWords, 10> words = {{
        {"en",
         {u"the",    u"and",      u"is",     u"you",  u"to",        u"of",   u"in",   u"it",      u"that",  u"for",
          u"hello",  u"world",    u"what",   u"this", u"are",       u"with", u"your", u"have",    u"not",   u"please",
          u"thanks", u"thank",    u"yes",    u"good", u"how",       u"file", u"save", u"cancel",  u"open",  u"close",
          u"delete", u"settings", u"search", u"help", u"edit",      u"view", u"new",  u"from",    u"can",   u"will",
          u"we",     u"my",       u"be",     u"on",   u"all",       u"an",   u"i",    u"morning", u"error", u"failed",
          u"no",     u"ok",       u"hi",     u"test", u"translate", u"text", u"by",   u"as",      u"at"}},
        {"fr", {u"le",    u"la",  u"les", u"un",  u"une", u"et",   u"est",  u"vous", u"je",    u"nous", u"bonjour",
                u"merci", u"des", u"du",  u"pas", u"que", u"qui",  u"dans", u"pour", u"sur",   u"avec", u"monde",
                u"oui",   u"il",  u"ce",  u"au",  u"ça",  u"cest", u"très", u"bien", u"salut", u"suis", u"votre"}},
        {"de", {u"der",   u"die", u"das",  u"und", u"ist", u"ich", u"nicht", u"ein",  u"eine",  u"sie",  u"wir",
                u"mit",   u"den", u"von",  u"zu",  u"auf", u"für", u"guten", u"tag",  u"hallo", u"welt", u"danke",
                u"bitte", u"ja",  u"nein", u"es",  u"im",  u"dem", u"wie",   u"geht", u"morgen"}},
        {"es", {u"el",   u"los",  u"las",  u"una",  u"y",     u"es",      u"de",     u"que",  u"en",
                u"por",  u"con",  u"para", u"hola", u"mundo", u"gracias", u"buenos", u"días", u"usted",
                u"cómo", u"está", u"muy",  u"sí",   u"del",   u"lo",      u"se"}},
        {"it",
         {u"il", u"lo", u"gli", u"di", u"che", u"è", u"per", u"sono", u"ciao", u"grazie", u"mondo", u"buongiorno",
          u"della", u"con", u"una", u"non", u"come", u"questo", u"del"}},
        {"pt", {u"o",     u"os",       u"as",       u"um",  u"uma", u"e",    u"é",  u"não", u"para", u"com", u"olá",
                u"mundo", u"obrigado", u"obrigada", u"bom", u"dia", u"você", u"do", u"da",  u"em",   u"que", u"está"}},
        {"nl",
         {u"de", u"het", u"een", u"en", u"van", u"ik", u"niet", u"dat", u"hallo", u"wereld", u"dank", u"goede",
          u"morgen", u"is", u"voor", u"met", u"zijn"}},
        {"sv", {u"och", u"att", u"det", u"är", u"jag", u"inte", u"hej", u"tack", u"världen", u"en", u"som", u"på"}},
        {"pl",
         {u"i", u"w", u"nie", u"jest", u"się", u"na", u"cześć", u"dzień", u"dobry", u"dziękuję", u"świecie", u"to"}},
        {"tr",
         {u"ve", u"bir", u"bu", u"merhaba", u"dünya", u"için", u"teşekkürler", u"değil", u"ne", u"evet", u"nasılsın"}},
    }};
    return words;
}

// The language of whose frequent words the text holds most, and how many.
std::pair<const char*, std::size_t> languageByFrequentWords(icu::UnicodeString text) {
    text.toLower();
    std::vector<std::u16string> words(1);
    for (int i = 0; i < text.length(); ++i) {
        if (u_isalpha(text.charAt(i))) {
            words.back().push_back(text.charAt(i));
        } else if (text.charAt(i) != u'\'' && !words.back().empty()) {
            words.emplace_back();
        }
    }
    std::pair<const char*, std::size_t> best{nullptr, 0};
    for (const auto& candidate : frequentWords()) {
        const auto count = static_cast<std::size_t>(std::count_if(
            words.begin(), words.end(), [&](const std::u16string& word) { return candidate.words.contains(word); }));
        if (count > best.second) best = {candidate.language, count};
    }
    return best;
}

}  // namespace

std::optional<std::string> LinuxLanguageIdentifier::dominantLanguage(std::string_view text) const {
    const auto unicode = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    const ScriptCounts counts = countScripts(unicode);
    if (counts.all() == 0) return std::nullopt;
    if (auto language = eastAsianLanguage(counts)) return language;

    // Without the parts in other scripts, and as valid UTF-8.
    std::string clean;
    unicode.toUTF8String(clean);
    std::array<CLD2::Language, 3> languages{};
    std::array<int, 3> percents{};
    int textBytes = 0;
    bool reliable = false;
    const CLD2::CLDHints hints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    std::array<double, 3> scores{};
    CLD2::ExtDetectLanguageSummary(clean.data(), static_cast<int>(clean.size()), true, &hints, CLD2::kCLDFlagBestEffort,
                                   languages.data(), percents.data(), scores.data(), nullptr, &textBytes, &reliable);
    constexpr std::size_t shortText = 60;  // letters
    if (counts.latin > counts.cyrillic + counts.others && (!reliable || counts.latin < shortText)) {
        const auto [language, count] = languageByFrequentWords(unicode);
        if (count > 0) return language;
        const bool ascii = std::all_of(clean.begin(), clean.end(), [](char byte) { return (byte & 0x80) == 0; });
        if (!reliable && ascii) return "en";  // names and commands
    }
    // Few Cyrillic letters: Russian unless a letter says otherwise.
    if (counts.cyrillic > counts.latin + counts.others && counts.cyrillic < shortText && !reliable) {
        for (const char16_t letter : {u'і', u'ї', u'є', u'ґ'}) {
            if (unicode.indexOf(letter) >= 0) return "uk";
        }
        return "ru";
    }
    if (languages[0] != CLD2::UNKNOWN_LANGUAGE && languages[0] != CLD2::TG_UNKNOWN_LANGUAGE) return tagOf(languages[0]);
    // Plain letters that no language claims are most often English words or names.
    if (counts.latin * 2 > counts.all()) return "en";
    return std::nullopt;
}

}  // namespace ovrin
