#include "platform/linux/recognition/control_marks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

#include <opencv2/imgproc.hpp>
#include <unicode/uchar.h>

#include "base/script.h"

namespace ovrin {
namespace {

// Confidence of a word, chosen on 29 screenshots of strangers and on forty drawn controls.
constexpr double sureOfFew = 0.9;    // of one or two letters
constexpr double sureOfMany = 0.75;  // of more
constexpr double sureOfOne = 0.97;   // of a character without any other on its line
constexpr double sureOfMark = 0.5;   // of punctuation that stands by a word
constexpr double sureOfShape = 0.95;

// In ems. A mark of the user interface stands off the text beside it as a word does.
constexpr double wordGap = 0.3;
constexpr double iconGap = 0.45;  // a letter before a word stands closer
constexpr double farFromText = 0.6;

bool isOneOf(char32_t character, std::u32string_view set) {
    return set.find(character) != std::u32string_view::npos;
}

// Arrows, boxes, bullets, stars, emoji: drawn things that Unicode has a place for. Signs that belong to a text (°, ©,
// ℃, №) are none.
bool isPictorial(char32_t character) {
    if (isOneOf(character, U"•·√≡")) return true;
    const auto category = u_charType(static_cast<UChar32>(character));
    return character >= 0x2190 && (category == U_OTHER_SYMBOL || (category == U_MATH_SYMBOL && character < 0x2200) ||
                                   (character >= 0x25a0 && character < 0x2800));
}

// What check boxes, rings, crosses, chevrons, lenses and bars are read as.
bool isShape(char32_t character) {
    return isPictorial(character) ||
           isOneOf(character, U"OoQ0〇①XxVv×CⅡ个口囗日目田回三二工くへ凸品吕<>〈〉《》«»^~=+-—–―_|丨丶…°*");
}

// A plus has its weight in the middle, 十 above it.
bool isPlus(const LinePiece& piece) {
    const cv::Moments ink = cv::moments(piece.ink(piece.inkBox));
    return std::abs(ink.m01 / ink.m00 - (piece.inkBox.height - 1) / 2.0) < 0.01 * piece.inkBox.height;
}

// Is the only character of its line one, and no drawing of that shape?
bool isCharacter(const ReadCharacter& character, const LinePiece& piece) {
    // In programs a brace is a line.
    const bool isSure = character.confidence >= (isOneOf(character.code, U"{}()[]") ? sureOfFew : sureOfOne);
    return isSure && !isShape(character.code) && !(character.code == U'十' && isPlus(piece));
}

// Does the word, from `first` up to `last`, belong to the text of its line?
bool isText(const LinePiece& piece, std::size_t first, std::size_t last) {
    const Reading& reading = piece.reading;
    if (reading.size() == 1) return isCharacter(reading.front(), piece);
    const auto gapBefore = [&](std::size_t index) {
        return index == 0 || index == reading.size() ? 1000
                                                     : (reading[index].left - reading[index - 1].right) / piece.em;
    };
    const double gap = std::min(gapBefore(first), gapBefore(last));
    Reading letters(reading.begin() + static_cast<std::ptrdiff_t>(first),
                    reading.begin() + static_cast<std::ptrdiff_t>(last));
    const bool isAtEnd = first == 0 || last == reading.size();
    if (isAtEnd && std::ranges::all_of(letters, isPictorial, &ReadCharacter::code)) return false;
    const ReadCharacter mark = letters.front();
    // No line begins with a stop: open bullets and dots are read as such.
    if (last == 1 && isOneOf(mark.code, U"。：")) return false;
    const bool isMark = isAtEnd && letters.size() == 1 && isShape(mark.code);
    std::erase_if(letters, [](const ReadCharacter& character) { return !isOfWords(character.code); });
    if (letters.empty()) {
        if (isMark && gap > wordGap) return mark.confidence > sureOfShape;
        return mark.confidence >= (isAtEnd && gap > farFromText ? sureOfFew : sureOfMark);
    }
    return meanConfidence(letters) >= (letters.size() <= 2 ? sureOfFew : sureOfMany) && !(isMark && gap > iconGap);
}

}  // namespace

void removeControlMarks(LinePiece& piece) {
    const Reading& reading = piece.reading;
    Reading text;
    for (std::size_t first = 0, last = 1; first < reading.size(); first = last, ++last) {
        while (last < reading.size() && reading[last].left - reading[last - 1].right <= wordGap * piece.em) ++last;
        if (isText(piece, first, last))
            text.insert(text.end(), reading.begin() + static_cast<std::ptrdiff_t>(first),
                        reading.begin() + static_cast<std::ptrdiff_t>(last));
    }
    piece.reading = text;
}

}  // namespace ovrin
