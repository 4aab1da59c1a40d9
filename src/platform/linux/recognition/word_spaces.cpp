#include "platform/linux/recognition/word_spaces.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <tuple>

#include <opencv2/imgproc.hpp>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr std::size_t enoughForGrid = 10;  // distances between narrow characters

std::vector<double> narrowDistances(const Reading& reading) {
    std::vector<double> distances;
    for (std::size_t i = 1; i < reading.size(); ++i) {
        if (!isWide(reading[i - 1].code) && !isWide(reading[i].code))
            distances.push_back(reading[i].center() - reading[i - 1].center());
    }
    return distances;
}

// How far the distances are from whole numbers of cells on average, in cells.
double gridError(const std::vector<double>& distances, double cell) {
    double error = 0;
    for (const double distance : distances) {
        const double cells = std::max(1.0, std::round(distance / cell));
        error += std::min(0.5, std::abs(distance / cell - cells));
    }
    return distances.empty() ? 1 : error / static_cast<double>(distances.size());
}

// The cell width of a fixed-width font in pixels, if so many characters stand on a grid of cells that it's no accident.
std::optional<double> cellWidth(const Reading& reading, double em) {
    constexpr double largestError = 0.075;
    const auto distances = narrowDistances(reading);
    if (distances.size() < enoughForGrid) return std::nullopt;
    std::optional<double> best;
    double bestError = largestError;
    for (int hundredths = 42; hundredths < 80; ++hundredths) {
        const double cell = hundredths / 100.0 * em;
        const double error = gridError(distances, cell);
        if (error < bestError) {
            bestError = error;
            best = cell;
        }
    }
    return best;
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
            const auto& [before, after] = std::tie(piece.reading[i - 1], piece.reading[i]);
            const double gap = (after.left - before.right) / piece.em;
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
    const double gap = (after.left - before.right) / em;
    const double distance = (after.center() - before.center()) / em;
    const double said = after.spaceBefore;
    if (left == Script::wideMark || right == Script::wideMark) return gap > 1.3;
    if (left == Script::hangul || right == Script::hangul) return gap > koreanGap;
    if (isWide(before.code) && isWide(after.code)) return distance > 1.3 && gap > 0.4;
    if (isWide(before.code) != isWide(after.code)) {
        // Half a wide cell, half a narrow one, and less than half of the blank cell that a space makes.
        if (cell) return distance > 0.48 + *cell / em && gap > 0.3;
        // Stops and the like stand off from the character before them without any space.
        constexpr std::u32string_view stops = U",.:;!?·…";
        const bool stop =
            stops.find(before.code) != std::u32string_view::npos || stops.find(after.code) != std::u32string_view::npos;
        const bool mark = left == Script::mark || right == Script::mark;
        return gap + 0.1 * said > (stop ? 0.4 : mark ? 0.26 : 0.2);
    }
    if (cell) return distance * em / *cell > 1.6 && gap > 0.3;
    return gap + 0.25 * said > 0.3;
}

// The cells of the fixed-width fonts that the pieces are set in. Where most long pieces stand on a grid, a short piece
// that fits it does too.
std::vector<std::optional<double>> cellWidths(const std::vector<LinePiece>& pieces) {
    std::vector<std::optional<double>> cells;
    std::vector<double> found;
    std::size_t longPieces = 0;
    for (const LinePiece& piece : pieces) {
        cells.push_back(cellWidth(piece.reading, piece.em));
        if (narrowDistances(piece.reading).size() >= enoughForGrid) ++longPieces;
        if (cells.back()) found.push_back(*cells.back());
    }
    if (found.size() * 2 <= longPieces) return cells;
    const auto middle = found.begin() + static_cast<std::ptrdiff_t>(found.size() / 2);
    std::ranges::nth_element(found, middle);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const double share = *middle / pieces[i].em;
        if (!cells[i] && share > 0.4 && share < 0.8 && gridError(narrowDistances(pieces[i].reading), *middle) < 0.15)
            cells[i] = *middle;
    }
    return cells;
}

}  // namespace

void placeSpaces(std::vector<LinePiece>& pieces) {
    const auto cells = cellWidths(pieces);
    const double koreanGap = koreanSpace(pieces);
    for (std::size_t k = 0; k < pieces.size(); ++k) {
        LinePiece& piece = pieces[k];
        Reading& reading = piece.reading;
        for (std::size_t i = 0; i < reading.size(); ++i) {
            ReadCharacter& character = reading[i];
            // Where ink can't be relied on, what the reader says of spaces has to do.
            const bool space = piece.flatBackground
                                   ? i > 0 && isSpace(reading[i - 1], character, piece.em, cells[k], koreanGap)
                                   : character.spaceBefore > 0.5 && !isEastAsian(character.code);
            // Vertical writing sets its characters apart at will.
            const bool isVertical =
                piece.turn != Turn::none && i > 0 && isEastAsian(character.code) && isEastAsian(reading[i - 1].code);
            character.spaceBefore = i > 0 && space && !isVertical ? 1 : 0;
        }
    }
}

}  // namespace ovrin
