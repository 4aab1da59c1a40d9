// Which script a character belongs to, as far as reading a line is concerned.
#pragma once

#include <string>

namespace ovrin {

enum class Script { latin, digit, han, kana, hangul, cyrillic, greek, thai, arabic, devanagari, wideMark, mark };

// latin: letters of every alphabet that has no name of its own here; wideMark: punctuation as wide as a Chinese
// character; mark: everything else.
Script scriptOf(char32_t character);

// Han, kana, hangul and wide marks: characters that fill a square.
bool isWide(char32_t character);
// Those that are written without spaces between words: all of them but Hangul.
bool isEastAsian(char32_t character);
// Letters, digits and characters: what words are made of.
bool isOfWords(char32_t character);

}  // namespace ovrin
