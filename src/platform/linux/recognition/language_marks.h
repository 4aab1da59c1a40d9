// What gives short texts in Latin letters away: frequent words, endings and letters of ten languages.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace ovrin {

struct LanguageMarks {
    std::string_view language;    // BCP-47 tag
    std::u16string_view words;    // in lower case, parted by spaces
    std::u16string_view endings;  // of words that are in no list
};
inline constexpr std::size_t languagesWithMarks = 10;
const std::array<LanguageMarks, languagesWithMarks>& languageMarks();

// How much a letter speaks for a language: the parts of one letter add up to 1.
struct LetterMark {
    char16_t letter;
    std::string_view language;
    double part;
};
inline constexpr std::size_t lettersWithMarks = 63;
const std::array<LetterMark, lettersWithMarks>& letterMarks();

}  // namespace ovrin
