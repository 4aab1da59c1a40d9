#include "platform/linux/recognition/word_spaces.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

double centerOf(const ReadCharacter& character) {
    return (character.left + character.right) / 2;
}

// Written without spaces between words.
bool isEastAsian(char32_t character) {
    return isWide(character) && scriptOf(character) != Script::hangul;
}

std::vector<double> narrowDistances(const Reading& reading) {
    std::vector<double> distances;
    for (std::size_t i = 1; i < reading.size(); ++i) {
        if (!isWide(reading[i - 1].code) && !isWide(reading[i].code))
            distances.push_back(centerOf(reading[i]) - centerOf(reading[i - 1]));
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
    constexpr std::size_t enough = 10;
    constexpr double largestError = 0.075;
    const auto distances = narrowDistances(reading);
    if (distances.size() < enough) return std::nullopt;
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
double koreanSpace(const std::vector<Reading>& readings, const std::vector<LinePiece>& pieces) {
    constexpr double usual = 0.235;
    constexpr std::size_t enough = 8;
    std::vector<double> gaps;
    for (std::size_t k = 0; k < readings.size(); ++k) {
        const auto& reading = readings[k];
        for (std::size_t i = 1; i < reading.size() && pieces[k].flatBackground; ++i) {
            if (scriptOf(reading[i - 1].code) == Script::hangul && scriptOf(reading[i].code) == Script::hangul)
                gaps.push_back((reading[i].left - reading[i - 1].right) / pieces[k].em);
        }
    }
    // A few gaps of a misplaced syllable must not pull the groups apart.
    std::erase_if(gaps, [](double gap) { return gap < 0 || gap > 0.7; });
    if (gaps.size() < enough) return usual;
    double best = usual;
    double bestSeparation = 0;
    for (int thousandths = 170; thousandths <= 340; thousandths += 5) {
        const double cut = thousandths / 1000.0;
        double below = 0, above = 0;
        double belowCount = 0, aboveCount = 0;
        for (const double gap : gaps) {
            (gap < cut ? below : above) += gap;
            (gap < cut ? belowCount : aboveCount) += 1;
        }
        if (belowCount == 0 || aboveCount == 0) continue;
        const double apart = above / aboveCount - below / belowCount;
        const double separation = belowCount * aboveCount * apart * apart;
        if (separation > bestSeparation * 1.0001) {
            bestSeparation = separation;
            best = cut + 0.005;
        }
    }
    return best;
}

// Is there a space between the two characters? The em and the cell of a fixed-width font are in pixels.
bool isSpace(const ReadCharacter& before, const ReadCharacter& after, double em, std::optional<double> cell,
             double koreanGap) {
    const Script left = scriptOf(before.code);
    const Script right = scriptOf(after.code);
    const double gap = (after.left - before.right) / em;
    const double distance = (centerOf(after) - centerOf(before)) / em;
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

void placeSpaces(Reading& reading, const LinePiece& piece, std::optional<double> cell, double koreanGap) {
    if (reading.empty()) return;
    reading.front().spaceBefore = 0;
    if (!piece.flatBackground) {
        for (auto& character : reading) {
            character.spaceBefore = character.spaceBefore > 0.5 && !isEastAsian(character.code) ? 1 : 0;
        }
        return;
    }
    for (std::size_t i = 1; i < reading.size(); ++i) {
        reading[i].spaceBefore = isSpace(reading[i - 1], reading[i], piece.em, cell, koreanGap) ? 1 : 0;
    }
}

}  // namespace

void placeSpaces(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces) {
    std::vector<std::optional<double>> cells(readings.size());
    std::vector<double> found;
    std::size_t longPieces = 0;
    constexpr std::size_t longPiece = 10;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        cells[i] = cellWidth(readings[i], pieces[i].em);
        if (narrowDistances(readings[i]).size() >= longPiece) ++longPieces;
        if (cells[i]) found.push_back(*cells[i]);
    }
    // Where most long pieces stand on a grid, a short piece on about the same grid does too.
    std::optional<double> common;
    if (found.size() * 2 > longPieces) {
        std::nth_element(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(found.size() / 2), found.end());
        common = found[found.size() / 2];
    }
    const double koreanGap = koreanSpace(readings, pieces);
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto distances = narrowDistances(readings[i]);
        const bool fits = common && *common > 0.4 * pieces[i].em && *common < 0.8 * pieces[i].em;
        if (!cells[i] && fits && gridError(distances, *common) < 0.15) cells[i] = common;
        placeSpaces(readings[i], pieces[i], cells[i], koreanGap);
    }
}

}  // namespace ovrin
