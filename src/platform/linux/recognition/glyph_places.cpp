#include "platform/linux/recognition/glyph_places.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr std::size_t mostTogether = 5;  // characters that touch, or parts of one character
constexpr double skippedRun = 1.2;       // cost of ink without a character; distances cost their share of the height
constexpr double skippedCharacter = 1.5;

struct Step {
    double cost = std::numeric_limits<double>::infinity();
    std::size_t characters = 0;
    std::size_t runs = 0;
};

double centerOf(const ReadCharacter& character) {
    return (character.left + character.right) / 2;
}

// Readers are off by a few pixels, never by a whole character.
double distanceCost(double pixels, double height) {
    const double distance = std::abs(pixels) / height;
    return 0.5 * distance + 2 * std::max(0.0, distance - 0.6);
}

// The widest that the ink of a character gets, in heights of the line.
double widestGlyph(char32_t character) {
    if (isWide(character)) return 1.25;
    switch (character) {
        case U'—':
        case U'…':
            return 2.2;
        case U'm':
        case U'w':
        case U'M':
        case U'W':
        case U'@':
        case U'%':
            return 1.2;
        case U'-':
            return 0.6;
        case U'.':
        case U',':
        case U':':
        case U'|':
            return 0.4;
        default:
            return scriptOf(character) == Script::mark ? 0.9 : 0.95;
    }
}

// The rows that the ink of some columns covers.
std::pair<int, int> inkRows(const LinePiece& piece, const ColumnRun& columns) {
    constexpr int strong = 128;
    int top = piece.ink.rows;
    int bottom = 0;
    for (int y = 0; y < piece.ink.rows; ++y) {
        const auto* row = piece.ink.ptr<std::uint8_t>(y);
        if (std::any_of(row + columns.left, row + columns.right, [](std::uint8_t level) { return level >= strong; })) {
            top = std::min(top, y);
            bottom = y + 1;
        }
    }
    return {top, bottom};
}

}  // namespace

void placeOnInk(Reading& reading, const LinePiece& piece) {
    if (!piece.flatBackground || piece.runs.empty() || reading.empty()) return;
    const double height = std::max(1, piece.inkBox.height);
    const auto& runs = piece.runs;
    const std::size_t columns = runs.size() + 1;
    std::vector<Step> steps((reading.size() + 1) * columns);
    const auto at = [&](std::size_t i, std::size_t j) -> Step& { return steps[i * columns + j]; };
    at(0, 0).cost = 0;
    const auto offer = [&](std::size_t i, std::size_t j, double cost, std::size_t characters, std::size_t taken) {
        if (i + characters > reading.size() || j + taken > runs.size()) return;
        Step& target = at(i + characters, j + taken);
        if (at(i, j).cost + cost < target.cost) target = {at(i, j).cost + cost, characters, taken};
    };
    for (std::size_t i = 0; i <= reading.size(); ++i) {
        for (std::size_t j = 0; j <= runs.size(); ++j) {
            if (at(i, j).cost == std::numeric_limits<double>::infinity()) continue;
            offer(i, j, skippedCharacter, 1, 0);
            if (j == runs.size()) continue;
            offer(i, j, (0.25 + runs[j].width() / height) * skippedRun, 0, 1);
            // One character over several runs.
            for (std::size_t taken = 1; i < reading.size() && taken <= mostTogether && j + taken <= runs.size();
                 ++taken) {
                const ColumnRun span{runs[j].left, runs[j + taken - 1].right};
                const double excess = span.width() / height - widestGlyph(reading[i].code);
                if (excess > 0 && taken > 1) break;
                double inner = 0;
                for (std::size_t k = 1; k < taken; ++k)
                    inner += std::max(0.0, (runs[j + k].left - runs[j + k - 1].right) / height - 0.1);
                const double distance = distanceCost(centerOf(reading[i]) - (span.left + span.right) / 2.0, height);
                const bool square = isWide(reading[i].code) && scriptOf(reading[i].code) != Script::wideMark;
                const double thin = square ? 0.4 * std::max(0.0, 0.8 - span.width() / height) : 0;
                offer(i, j,
                      distance + thin + inner +
                          (isWide(reading[i].code) ? 0.0 : 0.05) * static_cast<double>(taken - 1) +
                          std::max(0.0, excess),
                      1, taken);
            }
            // Several characters in one run.
            for (std::size_t together = 2; together <= 12 && i + together <= reading.size(); ++together) {
                double cost = 0.05 * static_cast<double>(together - 1);
                const double width = runs[j].width() / static_cast<double>(together);
                if (width < 0.15 * height) break;
                for (std::size_t k = 0; k < together; ++k) {
                    cost += distanceCost(
                        centerOf(reading[i + k]) - (runs[j].left + (static_cast<double>(k) + 0.5) * width), height);
                }
                offer(i, j, cost, together, 1);
            }
        }
    }
    for (std::size_t i = reading.size(), j = runs.size(); i > 0;) {
        const Step step = at(i, j);
        i -= step.characters;
        j -= step.runs;
        if (step.characters == 0 || step.runs == 0) continue;
        const ColumnRun span{runs[j].left, runs[j + step.runs - 1].right};
        const double width = span.width() / static_cast<double>(step.characters);
        for (std::size_t k = 0; k < step.characters; ++k) {
            reading[i + k].left = span.left + static_cast<double>(k) * width;
            reading[i + k].right = reading[i + k].left + width;
        }
    }
}

void restoreRepeatedMarks(Reading& reading, const LinePiece& piece) {
    if (!piece.flatBackground) return;
    for (const auto& run : piece.runs) {
        const auto next = std::find_if(reading.begin(), reading.end(),
                                       [&](const ReadCharacter& character) { return character.right > run.left; });
        const bool taken = next != reading.end() && next->left < run.right;
        if (taken || run.width() > 0.8 * piece.em) continue;
        // Like the mark beside it: as wide, as flat, and within a cell of it.
        const auto isLike = [&](const ReadCharacter& mark) {
            if (mark.code != U'-' && mark.code != U'.') return false;
            const double apart = std::abs(centerOf(mark) - (run.left + run.right) / 2.0);
            const int columns = std::max(1, static_cast<int>(std::lround(mark.right - mark.left)));
            const int left = std::clamp(static_cast<int>(std::lround(mark.left)), 0, piece.ink.cols - columns);
            return std::abs(columns - run.width()) <= 1 && apart < 0.8 * piece.em &&
                   inkRows(piece, run) == inkRows(piece, {left, left + columns});
        };
        if (next != reading.begin() && isLike(*std::prev(next))) {
            ReadCharacter mark = *std::prev(next);
            mark.left = run.left;
            mark.right = run.right;
            mark.spaceBefore = 0;
            reading.insert(next, mark);
        } else if (next != reading.end() && isLike(*next)) {
            ReadCharacter mark = *next;
            mark.left = run.left;
            mark.right = run.right;
            next->spaceBefore = 0;
            reading.insert(next, mark);
        }
    }
}

}  // namespace ovrin
