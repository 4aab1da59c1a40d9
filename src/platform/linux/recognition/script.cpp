#include "platform/linux/recognition/script.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace ovrin {
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
        case USCRIPT_HANGUL:  // whole syllables: nobody writes parts of them, and many marks look like one
            return character >= U'가' && character <= U'힣' ? Script::hangul : Script::wideMark;
        case USCRIPT_CYRILLIC:
            return Script::cyrillic;
        case USCRIPT_GREEK:
            return Script::greek;
        case USCRIPT_THAI:
            return Script::thai;
        case USCRIPT_ARABIC:
            return Script::arabic;
        case USCRIPT_DEVANAGARI:
            return Script::devanagari;
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

bool isEastAsian(char32_t character) {
    return isWide(character) && scriptOf(character) != Script::hangul;
}

bool isOfWords(char32_t character) {
    const Script script = scriptOf(character);
    return script != Script::mark && script != Script::wideMark;
}

}  // namespace ovrin
