#include "platform/linux/recognition/control_marks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/uchar.h>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

// Mean confidence of a word. Chosen on 29 screenshots of strangers and on forty drawn controls.
constexpr double sureOfFew = 0.9;    // of one or two characters
constexpr double sureOfMany = 0.75;  // of more
constexpr double sureOfOne = 0.97;   // of a character without any other on its line
constexpr double sureOfMark = 0.5;   // of punctuation that stands by a word

// In ems. A mark of the user interface stands off the text beside it as a word does.
constexpr double wordGap = 0.3;
constexpr double iconGap = 0.45;  // a letter before a word stands closer
constexpr double farFromText = 0.6;

struct Word {
    std::size_t first, last;
    std::size_t size() const { return last - first; }
};

std::vector<Word> wordsOf(const Reading& reading, double em) {
    std::vector<Word> words;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        if (i == 0 || reading[i].left - reading[i - 1].right > wordGap * em) words.push_back({i, i});
        words.back().last = i + 1;
    }
    return words;
}

// Arrows, boxes, bullets, stars, emoji: drawn things that Unicode has a place for. Signs that belong to a text (°, ©,
// ℃, №) are none.
bool isPictorial(char32_t character) {
    if (character == U'•' || character == U'·' || character == U'√' || character == U'≡') return true;
    if (character < 0x2190) return false;
    const auto category = u_charType(static_cast<UChar32>(character));
    return category == U_OTHER_SYMBOL || (category == U_MATH_SYMBOL && character < 0x2200) ||
           (character >= 0x25a0 && character < 0x2800);
}

// What check boxes, rings, crosses, chevrons, lenses and bars are read as.
bool isShape(char32_t character) {
    return isPictorial(character) ||
           std::u32string_view(U"OoQ0〇①XxVv×CⅡ个口囗日目田回三二工くへ凸品吕<>〈〉《》«»^~=+-—–―_|丨丶…°*")
                   .find(character) != std::u32string_view::npos;
}

class Marks {
public:
    Marks(const Reading& reading, const LinePiece& piece)
        : reading_(reading), piece_(piece), words_(wordsOf(reading, piece.em)) {}

    Reading withoutMarks() const {
        Reading kept;
        for (std::size_t i = 0; i < words_.size(); ++i) {
            if (!isText(i)) continue;
            kept.insert(kept.end(), reading_.begin() + static_cast<std::ptrdiff_t>(words_[i].first),
                        reading_.begin() + static_cast<std::ptrdiff_t>(words_[i].last));
        }
        return kept;
    }

private:
    bool isText(std::size_t index) const {
        const Word& word = words_[index];
        const bool isAlone = words_.size() == 1;
        const bool isAtEnd = index == 0 || index + 1 == words_.size();
        double letters = 0, confidence = 0;
        bool allPictorial = true;
        for (std::size_t i = word.first; i < word.last; ++i) {
            allPictorial = allPictorial && isPictorial(reading_[i].code);
            if (!isOfWords(reading_[i].code)) continue;
            ++letters;
            confidence += reading_[i].confidence;
        }
        if (allPictorial && isAtEnd) return false;
        if (letters == 0) return isPunctuation(index, isAlone, isAtEnd);
        const bool few = letters <= 2;
        if (reading_.size() == 1) return isCharacter();
        if (confidence / letters < (few ? sureOfFew : sureOfMany)) return false;
        return !(word.size() == 1 && isAtEnd && isShape(reading_[word.first].code) && standsOut(index, isAlone));
    }

    // Is the only character of its line one, and no drawing of that shape?
    bool isCharacter() const {
        const ReadCharacter& character = reading_.front();
        if (character.confidence < sureOfOne || isShape(character.code)) return false;
        // The arms of a plus are of one length; those of 十 are not.
        if (character.code == U'十') return std::abs(heaviestRow() - 0.5) > 0.03;
        return true;
    }

    // Where the row with most ink lies, 0 at the top of the ink and 1 at its foot.
    double heaviestRow() const {
        const cv::Mat ink = piece_.ink(piece_.inkBox);
        double sum = 0, most = 0, weighted = 0;
        for (int y = 0; y < ink.rows; ++y) most = std::max(most, cv::sum(ink.row(y))[0]);
        for (int y = 0; y < ink.rows; ++y) {
            const double row = cv::sum(ink.row(y))[0];
            if (row < 0.7 * most) continue;
            sum += row;
            weighted += row * (y + 0.5);
        }
        return sum == 0 ? 0.5 : weighted / sum / ink.rows;
    }

    bool isPunctuation(std::size_t index, bool isAlone, bool isAtEnd) const {
        const Word& word = words_[index];
        const bool shape = word.size() == 1 && isShape(reading_[word.first].code);
        // In programs a brace is a line.
        const bool brace = std::u32string_view(U"{}()[]").find(reading_[word.first].code) != std::u32string_view::npos;
        if (isAlone) return (word.size() > 1 || brace) && reading_[word.first].confidence >= sureOfFew;
        if (isAtEnd && shape && gapBeside(index) > wordGap)
            return reading_[word.first].confidence > 0.95 && !isLargeMark(word) && !isPlusBeforeWord(word);
        return reading_[word.first].confidence >= (gapBeside(index) > farFromText ? sureOfFew : sureOfMark);
    }

    // Chevrons and the like are as high as capitals, signs are not.
    bool isLargeMark(const Word& word) const {
        const auto [top, bottom] = rowsOf(word);
        return std::u32string_view(U"<>+=~^«»").find(reading_[word.first].code) != std::u32string_view::npos &&
               bottom - top > 0.62 * piece_.em;
    }

    bool isPlusBeforeWord(const Word& word) const {
        return reading_[word.first].code == U'+' && word.first == 0 && word.last < reading_.size() &&
               scriptOf(reading_[word.last].code) != Script::digit;
    }

    // The narrower gap to a neighbouring word, in ems.
    double gapBeside(std::size_t index) const {
        const Word& word = words_[index];
        double gap = 1000;
        if (word.first > 0) gap = std::min(gap, reading_[word.first].left - reading_[word.first - 1].right);
        if (word.last < reading_.size()) gap = std::min(gap, reading_[word.last].left - reading_[word.last - 1].right);
        return gap / piece_.em;
    }

    // Does a letter of such a shape not stand on the line of the text beside it? Capitals do, icons are centred on it
    // and mostly larger.
    bool standsOut(std::size_t index, bool isAlone) const {
        if (isAlone) return true;
        const auto [top, bottom] = rowsOf(words_[index]);
        int textTop = piece_.ink.rows, textBottom = 0;
        for (std::size_t other = 0; other < words_.size(); ++other) {
            if (other == index) continue;
            const auto [otherTop, otherBottom] = rowsOf(words_[other]);
            textTop = std::min(textTop, otherTop);
            textBottom = std::max(textBottom, otherBottom);
        }
        const double tolerance = std::max(1.0, 0.06 * piece_.em);
        return top < textTop - tolerance || bottom > textBottom + tolerance ||
               reading_[words_[index].first].confidence < sureOfFew || gapBeside(index) > iconGap;
    }

    // The rows that the ink of a word covers.
    ColumnRun rowsOf(const Word& word) const {
        const int left = std::clamp(static_cast<int>(reading_[word.first].left), 0, piece_.ink.cols - 1);
        const int right = std::clamp(static_cast<int>(reading_[word.last - 1].right), left + 1, piece_.ink.cols);
        return piece_.rowsOfInk({left, right});
    }

    const Reading& reading_;
    const LinePiece& piece_;
    std::vector<Word> words_;
};

}  // namespace

void removeControlMarks(LinePiece& piece) {
    piece.reading = Marks(piece.reading, piece).withoutMarks();
}

}  // namespace ovrin
