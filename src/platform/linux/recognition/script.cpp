#include "platform/linux/recognition/script.h"

#include <memory>
#include <unordered_map>

#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace ovrin {
namespace {

// ICU's character-by-character tables, read once for the unified ideographs in common use.
struct HanVariants {
    std::unordered_map<char32_t, char32_t> simplified;
    std::unordered_map<char32_t, char32_t> traditional;

    HanVariants() {
        simplified = table("Traditional-Simplified");
        traditional = table("Simplified-Traditional");
    }

    static std::unordered_map<char32_t, char32_t> table(const char* name) {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::Transliterator> transform(
            icu::Transliterator::createInstance(name, UTRANS_FORWARD, status));
        std::unordered_map<char32_t, char32_t> changed;
        if (U_FAILURE(status) || !transform) return changed;
        for (char32_t character = 0x4e00; character < 0xa000; ++character) {
            icu::UnicodeString text(static_cast<UChar32>(character));
            transform->transliterate(text);
            const auto result = static_cast<char32_t>(text.char32At(0));
            if (result != character && text.countChar32() == 1) changed.emplace(character, result);
        }
        return changed;
    }
};

const HanVariants& hanVariants() {
    static const HanVariants variants;
    return variants;
}

}  // namespace

Script scriptOf(char32_t character) {
    const auto code = static_cast<UChar32>(character);
    if (character < 0x80) {
        if (u_isdigit(code)) return Script::digit;
        return u_isalpha(code) ? Script::latin : Script::mark;
    }
    if (character == U'ー' || character == U'々' || character == U'〆')
        return character == U'ー' ? Script::kana : Script::han;
    UErrorCode status = U_ZERO_ERROR;
    switch (uscript_getScript(code, &status)) {
        case USCRIPT_HAN:
            return Script::han;
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
            return Script::kana;
        case USCRIPT_HANGUL:
            return Script::hangul;
        default:
            break;
    }
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    if (width == U_EA_FULLWIDTH || width == U_EA_WIDE) return Script::wideMark;
    return u_isalpha(code) ? Script::latin : Script::mark;
}

bool isWide(char32_t character) {
    const Script script = scriptOf(character);
    return script == Script::han || script == Script::kana || script == Script::hangul || script == Script::wideMark;
}

bool isTraditionalOnly(char32_t character) {
    return hanVariants().simplified.contains(character);
}

bool isSimplifiedOnly(char32_t character) {
    return hanVariants().traditional.contains(character) && !hanVariants().simplified.contains(character);
}

char32_t simplified(char32_t character) {
    const auto found = hanVariants().simplified.find(character);
    return found == hanVariants().simplified.end() ? character : found->second;
}

}  // namespace ovrin
