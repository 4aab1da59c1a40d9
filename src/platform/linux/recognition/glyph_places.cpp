#include "platform/linux/recognition/glyph_places.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <string_view>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr std::size_t mostRuns = 5;         // parts of one character
constexpr std::size_t mostCharacters = 12;  // that touch
constexpr double narrowestGlyph = 0.15;     // heights of the line
// Costs, chosen on drawn lines and on the spaces of 57 pictures; distances cost their share of the height.
constexpr double skippedRun = 1.2;
constexpr double skippedCharacter = 1.5;
constexpr double touching = 0.05;

struct Step {
    double cost = std::numeric_limits<double>::infinity();
    std::size_t characters = 0;
    std::size_t runs = 0;
};

// Readers are off by a few pixels, never by a whole character.
double distanceCost(double pixels, double height) {
    const double distance = std::abs(pixels) / height;
    return 0.5 * distance + 2 * std::max(0.0, distance - 0.6);
}

// The widest that the ink of a character gets, in heights of the line.
double widestGlyph(char32_t character) {
    struct Width {
        std::u32string_view characters;
        double heights;
    };
    constexpr Width widths[] = {{U"—…", 2.2}, {U"mwMW@%", 1.2}, {U"-", 0.6}, {U".,:|", 0.4}};
    if (isWide(character)) return 1.25;
    for (const auto& width : widths) {
        if (width.characters.find(character) != std::u32string_view::npos) return width.heights;
    }
    return scriptOf(character) == Script::mark ? 0.9 : 0.95;
}

}  // namespace

// The cheapest way to hand out the runs of ink in order: one character takes several of them, or several one.
void placeOnInk(Reading& reading, const LinePiece& piece, const ColumnRun& columns) {
    std::vector<ColumnRun> runs;
    std::ranges::copy_if(piece.runs, std::back_inserter(runs), [&](const ColumnRun& run) {
        return run.center() >= columns.left && run.center() <= columns.right;
    });
    if (!piece.flatBackground || runs.empty() || reading.empty()) return;
    const double height = std::max(1, piece.inkBox.height);
    const std::size_t ends = runs.size() + 1;
    std::vector<Step> steps((reading.size() + 1) * ends);
    const auto at = [&](std::size_t i, std::size_t j) -> Step& { return steps[i * ends + j]; };
    at(0, 0).cost = 0;
    const auto offer = [&](std::size_t i, std::size_t j, double cost, std::size_t characters, std::size_t taken) {
        Step& target = at(i + characters, j + taken);
        if (at(i, j).cost + cost < target.cost) target = {at(i, j).cost + cost, characters, taken};
    };
    for (std::size_t i = 0; i <= reading.size(); ++i) {
        const std::size_t left = reading.size() - i;
        for (std::size_t j = 0; j <= runs.size(); ++j) {
            if (at(i, j).cost == std::numeric_limits<double>::infinity()) continue;
            if (left > 0) offer(i, j, skippedCharacter, 1, 0);
            if (j == runs.size()) continue;
            offer(i, j, (0.25 + runs[j].width() / height) * skippedRun, 0, 1);
            for (std::size_t taken = 1; left > 0 && taken <= std::min(mostRuns, runs.size() - j); ++taken) {
                const ColumnRun span{runs[j].left, runs[j + taken - 1].right};
                const double excess = span.width() / height - widestGlyph(reading[i].code);
                if (excess > 0 && taken > 1) break;
                const double split = isWide(reading[i].code) ? 0 : touching * static_cast<double>(taken - 1);
                offer(i, j, distanceCost(reading[i].center() - span.center(), height) + split + std::max(0.0, excess),
                      1, taken);
            }
            for (std::size_t together = 2; together <= std::min(mostCharacters, left); ++together) {
                double cost = touching * static_cast<double>(together - 1);
                const double width = runs[j].width() / static_cast<double>(together);
                if (width < narrowestGlyph * height) break;
                for (std::size_t k = 0; k < together; ++k) {
                    const double center = runs[j].left + (static_cast<double>(k) + 0.5) * width;
                    cost += distanceCost(reading[i + k].center() - center, height);
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

void restoreRepeatedMarks(LinePiece& piece) {
    Reading& reading = piece.reading;
    if (!piece.flatBackground) return;
    for (const auto& run : piece.runs) {
        const auto next =
            std::ranges::find_if(reading, [&](const ReadCharacter& character) { return character.right > run.left; });
        if ((next != reading.end() && next->left < run.right) || run.width() > 0.8 * piece.em) continue;
        // Like the mark beside it: as wide, as flat, and within a cell of it.
        const auto isLike = [&](const ReadCharacter& mark) {
            const int columns = std::max(1, static_cast<int>(std::lround(mark.right - mark.left)));
            const int left = std::clamp(static_cast<int>(std::lround(mark.left)), 0, piece.ink.cols - columns);
            return (mark.code == U'-' || mark.code == U'.') && std::abs(columns - run.width()) <= 1 &&
                   std::abs(mark.center() - run.center()) < 0.8 * piece.em &&
                   piece.rowsOfInk(run) == piece.rowsOfInk({left, left + columns});
        };
        const bool asBefore = next != reading.begin() && isLike(*std::prev(next));
        if (!asBefore && (next == reading.end() || !isLike(*next))) continue;
        ReadCharacter mark = asBefore ? *std::prev(next) : *next;
        (asBefore ? mark : *next).spaceBefore = 0;
        mark.left = run.left;
        mark.right = run.right;
        reading.insert(next, mark);
    }
}

}  // namespace ovrin
