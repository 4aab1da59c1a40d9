// Which script a character belongs to, as far as reading a line is concerned.
#pragma once

#include <string>

namespace ovrin {

enum class Script { latin, digit, han, kana, hangul, wideMark, mark };

// wideMark: punctuation as wide as a Chinese character; mark: everything else.
Script scriptOf(char32_t character);

// Han, kana, hangul and wide marks: characters that fill a square.
bool isWide(char32_t character);

// Han written in only one of the two Chinese standards. Characters that both share are neither.
bool isTraditionalOnly(char32_t character);
bool isSimplifiedOnly(char32_t character);

// The simplified form of a traditional character, else the character itself.
char32_t simplified(char32_t character);

}  // namespace ovrin
