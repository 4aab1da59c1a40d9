#include "platform/linux/recognition/word_spaces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

double centerOf(const ReadCharacter& character) { return (character.left + character.right) / 2; }

}  // namespace

void placeSpaces(Reading& reading, const LinePiece& piece) {
    if (reading.empty()) return;
    const double em = 1.08 * std::max(1, piece.inkBox.height);
    reading.front().spaceBefore = 0;
    if (!piece.flatBackground) {
        for (auto& character : reading) character.spaceBefore = character.spaceBefore > 0.5 && !isWide(character.code) ? 1 : 0;
        return;
    }
    for (std::size_t i = 1; i < reading.size(); ++i) {
        auto& character = reading[i];
        const auto& before = reading[i - 1];
        const Script left = scriptOf(before.code);
        const Script right = scriptOf(character.code);
        const double gap = (character.left - before.right) / em;
        double score = gap + 0.25 * character.spaceBefore;
        const double said = character.spaceBefore;
        character.spaceBefore = 0;
        if (left == Script::wideMark || right == Script::wideMark) {
            if (gap > 1.2) character.spaceBefore = 1;
        } else if (isWide(before.code) && isWide(character.code) && left != Script::hangul) {
            const double distance = (centerOf(character) - centerOf(before)) / em;
            character.spaceBefore = distance > 1.3 && gap > 0.3 ? 1 : 0;
        } else {
            const bool korean = left == Script::hangul || right == Script::hangul;
            character.spaceBefore = (korean ? gap + 0.04 * said > 0.245 : score > 0.33) ? 1 : 0;
        }
        if (std::getenv("DUMP"))
            std::fprintf(stderr, "PAIR %u %u %.3f %.3f %.0f %.1f\n", (unsigned)before.code, (unsigned)character.code, gap, said, character.spaceBefore, em);
    }
}

}  // namespace ovrin
