#include "platform/linux/recognition/word_spaces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include <opencv2/imgproc.hpp>

#include "base/script.h"

namespace ovrin {
namespace {

// The cell width of a fixed-width font in pixels, if so many characters stand on a grid of cells that it's no accident.
std::optional<double> cellWidth(const LinePiece& piece) {
    constexpr std::size_t enough = 10;
    constexpr double largestError = 0.075;
    std::vector<double> distances;  // between narrow characters
    for (std::size_t i = 1; i < piece.reading.size(); ++i) {
        if (!isWide(piece.reading[i - 1].code) && !isWide(piece.reading[i].code))
            distances.push_back(piece.reading[i].center() - piece.reading[i - 1].center());
    }
    if (distances.size() < enough) return std::nullopt;
    std::optional<double> best;
    double bestError = largestError * static_cast<double>(distances.size());
    for (int hundredths = 42; hundredths < 80; ++hundredths) {
        const double cell = hundredths / 100.0 * piece.em;
        double error = 0;  // how far they are from whole numbers of cells
        for (const double distance : distances)
            error += std::min(0.5, std::abs(distance / cell - std::max(1.0, std::round(distance / cell))));
        if (error >= bestError) continue;
        bestError = error;
        best = cell;
    }
    return best;
}

double gapBetween(const ReadCharacter& before, const ReadCharacter& after, double em) {
    return (after.left - before.right) / em;
}

// Of the marks that have a narrow and a wide form; any other character stays as it is.
char32_t wideForm(char32_t character) {
    constexpr std::u32string_view narrow = U",:;!?()";
    constexpr std::u32string_view wide = U"，：；！？（）";
    const auto mark = narrow.find(character);
    return mark == std::u32string_view::npos ? character : wide[mark];
}

// Gives marks beside Chinese or Japanese characters their wide form where they stand in a wide cell: the picture shows
// a blank there that no space makes.
void widenMarksByGaps(Reading& reading, double em) {
    constexpr double blankOfMark = 0.42;  // ems; a space beside a narrow mark leaves about 0.3
    constexpr double blankOfBrace = 0.5;
    ReadCharacter* open = nullptr;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        auto& character = reading[i];
        const bool opens = character.code == U'(' || character.code == U'（';
        const bool closes = character.code == U')' || character.code == U'）';
        const double before = i == 0 ? 0 : gapBetween(reading[i - 1], character, em);
        const double after = i + 1 == reading.size() ? 0 : gapBetween(character, reading[i + 1], em);
        const bool beside =
            (i > 0 && isEastAsian(reading[i - 1].code)) || (i + 1 < reading.size() && isEastAsian(reading[i + 1].code));
        const double blank = opens ? before : after;
        if (beside && blank > (opens || closes ? blankOfBrace : blankOfMark)) character.code = wideForm(character.code);
        // Braces are of one width.
        if (closes && open != nullptr && (open->code == U'（' || character.code == U'）')) {
            open->code = U'（';
            character.code = U'）';
        }
        open = opens ? &character : closes ? nullptr : open;
    }
}

// From which gap on, in ems, the Korean syllables of the picture are words apart. Fonts differ in how far apart they
// set syllables: the cut is where the gaps fall best into two groups.
double koreanSpace(const std::vector<LinePiece>& pieces) {
    constexpr double usual = 0.235;
    constexpr double widest = 0.7;  // a few gaps of a misplaced syllable must not pull the groups apart
    constexpr std::size_t enough = 8;
    std::vector<std::uint8_t> gaps;  // shares of the widest
    for (const LinePiece& piece : pieces) {
        for (std::size_t i = 1; i < piece.reading.size() && piece.flatBackground; ++i) {
            const ReadCharacter& before = piece.reading[i - 1];
            const ReadCharacter& after = piece.reading[i];
            const double gap = gapBetween(before, after, piece.em);
            if (scriptOf(before.code) == Script::hangul && scriptOf(after.code) == Script::hangul && gap >= 0 &&
                gap <= widest)
                gaps.push_back(static_cast<std::uint8_t>(gap / widest * 255));
        }
    }
    if (gaps.size() < enough) return usual;
    std::vector<std::uint8_t> isWord;
    const double cut = cv::threshold(gaps, isWord, 0, 1, cv::THRESH_OTSU) / 255 * widest;
    return std::clamp(cut + 0.005, 0.17, 0.34);
}

// Is there a space between the two characters? The em and the cell of a fixed-width font are in pixels.
bool isSpace(const ReadCharacter& before, const ReadCharacter& after, double em, std::optional<double> cell,
             double koreanGap) {
    const Script left = scriptOf(before.code);
    const Script right = scriptOf(after.code);
    const double gap = gapBetween(before, after, em);
    const double distance = after.center() - before.center();
    if (left == Script::hangul || right == Script::hangul) return gap > koreanGap;
    if (left == Script::wideMark || right == Script::wideMark) return gap > 1.3;
    if (isWide(before.code) && isWide(after.code)) return distance > 1.3 * em && gap > 0.4;
    if (isWide(before.code) || isWide(after.code)) {
        // Half a wide cell, half a narrow one, and less than half of the blank cell that a space makes.
        return cell ? distance > 0.48 * em + *cell && gap > 0.3 : gap > 0.2;
    }
    return cell ? distance > 1.6 * *cell && gap > 0.3 : gap + 0.25 * after.spaceBefore > 0.3;
}

}  // namespace

void placeSpaces(std::vector<LinePiece>& pieces) {
    const double koreanGap = koreanSpace(pieces);
    for (LinePiece& piece : pieces) {
        Reading& reading = piece.reading;
        if (piece.flatBackground) widenMarksByGaps(reading, piece.em);
        const auto cell = cellWidth(piece);
        for (std::size_t i = 0; i < reading.size(); ++i) {
            // Where ink can't be relied on, what the reader says of spaces has to do.
            const bool space = piece.flatBackground
                                   ? i > 0 && isSpace(reading[i - 1], reading[i], piece.em, cell, koreanGap)
                                   : i > 0 && reading[i].spaceBefore > 0.5 && !isEastAsian(reading[i].code);
            reading[i].spaceBefore = space ? 1 : 0;
        }
    }
}

}  // namespace ovrin
