// Which script a character belongs to, as far as telling languages and reading lines are concerned. Any thread.
#pragma once

namespace ovrin {

// otherLetter: of every alphabet that has no name of its own here; wideMark: punctuation as wide as a Chinese
// character; mark: everything else.
enum class Script {
    latin,
    digit,
    han,
    kana,
    hangul,
    bopomofo,
    cyrillic,
    greek,
    thai,
    arabic,
    devanagari,
    otherLetter,
    wideMark,
    mark
};

Script scriptOf(char32_t character);

// Han, kana, hangul, bopomofo and wide marks: characters that fill a square.
bool isWide(char32_t character);
// Those that are written without spaces between words: all of them but Hangul.
bool isEastAsian(char32_t character);
// Letters, digits and characters: what words are made of.
bool isOfWords(char32_t character);

}  // namespace ovrin
