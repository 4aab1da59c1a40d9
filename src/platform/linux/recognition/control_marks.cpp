#include "platform/linux/recognition/control_marks.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

static double env(const char* n, double d) { const char* v = std::getenv(n); return v ? std::atof(v) : d; }
const double apart = env("M_GAP", 0.3);
const double sureOfFew = env("M_FEW", 0.9);
const double sureOfMany = env("M_MANY", 0.7);

struct Word {
    std::size_t first, last;
    std::size_t size() const { return last - first; }
};

std::vector<Word> wordsOf(const Reading& reading, double em) {
    std::vector<Word> words;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        if (i == 0 || reading[i].left - reading[i - 1].right > apart * em) words.push_back({i, i});
        words.back().last = i + 1;
    }
    return words;
}

double confidenceOf(const Reading& reading, const Word& word) {
    double sum = 0;
    for (std::size_t i = word.first; i < word.last; ++i) sum += reading[i].confidence;
    return sum / static_cast<double>(word.size());
}

}  // namespace

void removeControlMarks(Reading& reading, const LinePiece& piece) {
    const auto words = wordsOf(reading, piece.em);
    Reading kept;
    for (const auto& word : words) {
        // Stops and slashes of a font with cells of one width stand alone inside of a line.
        const bool inner = word.first > 0 && word.last < reading.size();
        const bool punctuation = word.size() == 1 && reading[word.first].code < 0x80 && scriptOf(reading[word.first].code) == Script::mark;
        if (inner && punctuation) { kept.push_back(reading[word.first]); continue; }
        const bool sure = confidenceOf(reading, word) >= (word.size() <= 2 ? sureOfFew : sureOfMany);
        if (!sure) continue;
        kept.insert(kept.end(), reading.begin() + static_cast<std::ptrdiff_t>(word.first),
                    reading.begin() + static_cast<std::ptrdiff_t>(word.last));
    }
    reading = std::move(kept);
}

}  // namespace ovrin
