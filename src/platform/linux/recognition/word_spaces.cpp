#include "platform/linux/recognition/word_spaces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

double centerOf(const ReadCharacter& character) { return (character.left + character.right) / 2; }

// The cell width of a fixed-width font in pixels, if the characters stand on a grid of cells.
std::optional<double> cellWidth(const Reading& reading, double em) {
    std::vector<double> distances;
    for (std::size_t i = 1; i < reading.size(); ++i) {
        if (!isWide(reading[i - 1].code) && !isWide(reading[i].code))
            distances.push_back(centerOf(reading[i]) - centerOf(reading[i - 1]));
    }
    constexpr std::size_t enough = 10;
    if (distances.size() < enough) return std::nullopt;
    double best = 0;
    double bestError = 1;
    for (double cell = 0.42 * em; cell < 0.8 * em; cell += 0.01 * em) {
        double error = 0;
        for (const double distance : distances) {
            const double cells = std::max(1.0, std::round(distance / cell));
            error += std::min(0.5, std::abs(distance / cell - cells));
        }
        error /= static_cast<double>(distances.size());
        if (error < bestError) {
            bestError = error;
            best = cell;
        }
    }
    if (bestError > 0.075) return std::nullopt;
    return best;
}

// Is there a space between the two characters? Distances in ems; said: what the reader believes, 0..1.
bool isSpace(const ReadCharacter& before, const ReadCharacter& after, double em, std::optional<double> cell) {
    const Script left = scriptOf(before.code);
    const Script right = scriptOf(after.code);
    const double gap = (after.left - before.right) / em;
    const double distance = centerOf(after) - centerOf(before);
    const double said = after.spaceBefore;
    if (left == Script::wideMark || right == Script::wideMark) return gap > 1.3;
    if (left == Script::hangul || right == Script::hangul) return gap + 0.06 * said > 0.235;
    if (isWide(before.code) && isWide(after.code)) return distance > 1.3 * em && gap > 0.3;
    if (isWide(before.code) != isWide(after.code)) {
        const bool mark = left == Script::mark || right == Script::mark;
        return gap + 0.1 * said > (mark ? 0.4 : 0.2);
    }
    if (cell) return distance / *cell > 1.6 && gap > 0.3;
    return gap + 0.25 * said > 0.3;
}

}  // namespace

void placeSpaces(Reading& reading, const LinePiece& piece) {
    if (reading.empty()) return;
    reading.front().spaceBefore = 0;
    if (!piece.flatBackground) {
        for (auto& character : reading) {
            character.spaceBefore = character.spaceBefore > 0.5 && !isWide(character.code) ? 1 : 0;
        }
        return;
    }
    const auto cell = cellWidth(reading, piece.em);
    for (std::size_t i = 1; i < reading.size(); ++i) {
        const double said = reading[i].spaceBefore;
        reading[i].spaceBefore = isSpace(reading[i - 1], reading[i], piece.em, cell) ? 1 : 0;
        if (std::getenv("DUMP"))
            std::fprintf(stderr, "PAIR %u %u %.3f %.3f %.0f %.1f\n", (unsigned)reading[i-1].code, (unsigned)reading[i].code, (reading[i].left-reading[i-1].right)/piece.em, said, reading[i].spaceBefore, cell?-*cell/piece.em:piece.em);
    }
}

}  // namespace ovrin
