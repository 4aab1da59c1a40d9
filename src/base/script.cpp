#include "base/script.h"

#include <utility>

#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace ovrin {

Script scriptOf(char32_t character) {
    constexpr std::pair<UScriptCode, Script> scripts[] = {{USCRIPT_HAN, Script::han},
                                                          {USCRIPT_HIRAGANA, Script::kana},
                                                          {USCRIPT_KATAKANA, Script::kana},
                                                          {USCRIPT_BOPOMOFO, Script::bopomofo},
                                                          {USCRIPT_CYRILLIC, Script::cyrillic},
                                                          {USCRIPT_GREEK, Script::greek},
                                                          {USCRIPT_THAI, Script::thai},
                                                          {USCRIPT_ARABIC, Script::arabic},
                                                          {USCRIPT_DEVANAGARI, Script::devanagari}};
    const auto code = static_cast<UChar32>(character);
    if (character < 0x80) return u_isdigit(code) ? Script::digit : u_isalpha(code) ? Script::latin : Script::mark;
    if (character == U'ー') return Script::kana;
    // Whole syllables: nobody writes parts of them, and many marks look like one.
    if (character >= U'가' && character <= U'힣') return Script::hangul;
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(code, &status);
    for (const auto& [known, result] : scripts) {
        if (known == script) return result;
    }
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    if (width == U_EA_FULLWIDTH || width == U_EA_WIDE) return Script::wideMark;
    if (!u_isalpha(code)) return Script::mark;
    return script == USCRIPT_LATIN ? Script::latin : Script::otherLetter;
}

bool isWide(char32_t character) {
    const Script script = scriptOf(character);
    return script == Script::han || script == Script::kana || script == Script::hangul || script == Script::bopomofo ||
           script == Script::wideMark;
}

bool isEastAsian(char32_t character) {
    return isWide(character) && scriptOf(character) != Script::hangul;
}

bool isOfWords(char32_t character) {
    const Script script = scriptOf(character);
    return script != Script::mark && script != Script::wideMark;
}

}  // namespace ovrin
