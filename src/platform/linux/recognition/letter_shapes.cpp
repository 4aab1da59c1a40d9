#include "platform/linux/recognition/letter_shapes.h"

#include <algorithm>
#include <string_view>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

bool isLower(char32_t character) {
    return character >= U'a' && character <= U'z';
}
bool isUpper(char32_t character) {
    return character >= U'A' && character <= U'Z';
}
bool isDigit(char32_t character) {
    return character >= U'0' && character <= U'9';
}
bool isWordCharacter(char32_t character) {
    return isLower(character) || isUpper(character) || isDigit(character);
}

// The word around a position: [first, last).
struct Word {
    std::size_t first, last;
};

Word wordAt(const Reading& reading, std::size_t position) {
    Word word{position, position + 1};
    while (word.first > 0 && reading[word.first].spaceBefore < 0.5 && isWordCharacter(reading[word.first - 1].code))
        --word.first;
    while (word.last < reading.size() && reading[word.last].spaceBefore < 0.5 &&
           isWordCharacter(reading[word.last].code))
        ++word.last;
    return word;
}

char32_t corrected(const Reading& reading, std::size_t position) {
    const char32_t character = reading[position].code;
    if (character == U'丶') return U'、';
    if (character != U'l' && character != U'I' && character != U'0' && character != U'o' && character != U'O')
        return character;
    const Word word = wordAt(reading, position);
    const char32_t before = position > word.first ? reading[position - 1].code : U' ';
    const char32_t after = position + 1 < word.last ? reading[position + 1].code : U' ';
    const std::size_t length = word.last - word.first;
    if (character == U'l' && length >= 3 && isUpper(before) && !isLower(after)) return U'I';
    if (character == U'I' && isLower(before) && isLower(after)) return U'l';
    if ((character == U'o' || character == U'O') && isDigit(before) && isDigit(after)) return U'0';
    if (character == U'0' && length >= 4 && isLower(before) && isLower(after)) {
        const auto digits = std::count_if(reading.begin() + static_cast<std::ptrdiff_t>(word.first),
                                          reading.begin() + static_cast<std::ptrdiff_t>(word.last),
                                          [](const ReadCharacter& other) { return isDigit(other.code); });
        if (digits == 1) return U'o';
    }
    return character;
}

// Of the marks that have a narrow and a wide form; any other character stays as it is.
char32_t wideForm(char32_t character) {
    constexpr std::u32string_view narrow = U",:;!?()";
    constexpr std::u32string_view wide = U"，：；！？（）";
    const auto mark = narrow.find(character);
    return mark == std::u32string_view::npos ? character : wide[mark];
}

bool isEastAsian(char32_t character) {
    return isWide(character) && scriptOf(character) != Script::hangul;
}

}  // namespace

void correctLetterShapes(Reading& reading) {
    for (std::size_t i = 0; i < reading.size(); ++i) reading[i].code = corrected(reading, i);
    // One sign read as two: the degree of ℃ on its own and once more within the sign.
    for (std::size_t i = 1; i < reading.size();) {
        if (reading[i].code == U'℃' && reading[i - 1].code == U'°') {
            reading[i].left = reading[i - 1].left;
            reading[i].spaceBefore = reading[i - 1].spaceBefore;
            reading.erase(reading.begin() + static_cast<std::ptrdiff_t>(i - 1));
        } else {
            ++i;
        }
    }
}

void widenMarks(Reading& reading) {
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const char32_t wide = wideForm(reading[i].code);
        if (wide == reading[i].code) continue;
        const bool afterWide = i > 0 && isEastAsian(reading[i - 1].code);
        const bool beforeWide = i + 1 < reading.size() && isEastAsian(reading[i + 1].code);
        const bool atEdge = i == 0 || i + 1 == reading.size();
        if ((afterWide && beforeWide) || (atEdge && (afterWide || beforeWide))) reading[i].code = wide;
    }
}

void widenMarksByGaps(Reading& reading, double em) {
    constexpr double blankOfMark = 0.42;  // ems; a space beside a narrow mark leaves about 0.3
    constexpr double blankOfBrace = 0.5;
    bool open = false;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        auto& character = reading[i];
        const char32_t wide = wideForm(character.code);
        if (character.code == U'（') open = true;
        if (wide == character.code) continue;
        const double before = i == 0 ? 0 : (character.left - reading[i - 1].right) / em;
        const double after = i + 1 == reading.size() ? 0 : (reading[i + 1].left - character.right) / em;
        const bool beside =
            (i > 0 && isEastAsian(reading[i - 1].code)) || (i + 1 < reading.size() && isEastAsian(reading[i + 1].code));
        if (character.code == U')') {
            if (open || (beside && after > blankOfBrace)) character.code = wide;
            open = false;
        } else if (character.code == U'(') {
            open = beside && before > blankOfBrace;
            if (open) character.code = wide;
        } else if (beside && after > blankOfMark) {
            character.code = wide;
        }
    }
}

}  // namespace ovrin
