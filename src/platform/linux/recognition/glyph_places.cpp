#include "platform/linux/recognition/glyph_places.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "base/script.h"

namespace ovrin {
namespace {

constexpr std::size_t mostRuns = 5;         // parts of one character
constexpr std::size_t mostCharacters = 12;  // that touch
// Costs, chosen on drawn lines and on the spaces of 57 pictures; distances cost their share of the height.
constexpr double skippedRun = 1.2;
constexpr double skippedCharacter = 1.5;
constexpr double touching = 0.05;
constexpr double widestSquare = 1.25;  // that the ink of a character gets, heights of the line
constexpr double widestLetter = 0.95;

struct Step {
    double cost = std::numeric_limits<double>::infinity();
    std::size_t characters = 0;
    std::size_t runs = 0;
};

}  // namespace

// The cheapest way to hand out the runs of ink in order: one character takes several of them, or several one.
void placeOnInk(Reading& reading, const LinePiece& piece, const ColumnRun& columns) {
    std::vector<ColumnRun> runs;
    std::ranges::copy_if(piece.runs, std::back_inserter(runs), [&](const ColumnRun& run) {
        return run.center() >= columns.left && run.center() <= columns.right;
    });
    if (!piece.flatBackground || runs.empty() || reading.empty()) return;
    const double height = std::max(1, piece.inkBox.height);
    // The cheapest last step to where so many characters and runs have been handed out.
    std::vector steps(reading.size() + 1, std::vector<Step>(runs.size() + 1));
    steps[0][0].cost = 0;
    // Lays the characters side by side over the runs.
    const auto laid = [&](std::size_t i, std::size_t j, std::size_t characters, std::size_t taken, auto visit) {
        const double left = runs[j].left;
        const double width = (runs[j + taken - 1].right - left) / static_cast<double>(characters);
        for (std::size_t k = 0; k < characters; ++k)
            visit(reading[i + k], left + static_cast<double>(k) * width, width);
    };
    const auto offer = [&](std::size_t i, std::size_t j, double cost, std::size_t characters, std::size_t taken) {
        Step& target = steps[i + characters][j + taken];
        if (steps[i][j].cost + cost < target.cost) target = {steps[i][j].cost + cost, characters, taken};
    };
    for (std::size_t i = 0; i <= reading.size(); ++i) {
        const std::size_t left = reading.size() - i;
        for (std::size_t j = 0; j <= runs.size(); ++j) {
            if (left > 0) offer(i, j, skippedCharacter, 1, 0);
            if (j < runs.size()) offer(i, j, (0.25 + runs[j].width() / height) * skippedRun, 0, 1);
            for (std::size_t taken = 1; taken <= std::min(mostRuns, runs.size() - j); ++taken) {
                const std::size_t most = std::min(left, taken == 1 ? mostCharacters : 1);
                for (std::size_t together = 1; together <= most; ++together) {
                    const bool isParted = taken > 1 && !isWide(reading[i].code);
                    double cost = touching * static_cast<double>(together - 1 + (isParted ? taken - 1 : 0));
                    laid(i, j, together, taken, [&](const ReadCharacter& character, double start, double width) {
                        // Readers are off by a few pixels, never by a whole character.
                        const double distance = std::abs(character.center() - start - width / 2) / height;
                        cost += 0.5 * distance + 2 * std::max(0.0, distance - 0.6);
                        const double excess = width / height - (isWide(character.code) ? widestSquare : widestLetter);
                        cost += (taken > 1 ? 10 : 1) * std::max(0.0, excess);
                    });
                    offer(i, j, cost, together, taken);
                }
            }
        }
    }
    for (std::size_t i = reading.size(), j = runs.size(); i > 0;) {
        const Step step = steps[i][j];
        i -= step.characters;
        j -= step.runs;
        if (step.characters == 0 || step.runs == 0) continue;
        laid(i, j, step.characters, step.runs, [](ReadCharacter& character, double start, double width) {
            character.left = start;
            character.right = start + width;
        });
    }
}

}  // namespace ovrin
