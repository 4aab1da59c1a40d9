#include "platform/linux/recognition/reading_choice.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

double centerOf(const ReadCharacter& character) {
    return (character.left + character.right) / 2;
}

bool isAscii(const ReadCharacter& character) {
    return character.code < 0x80;
}

bool isLatin(const ReadCharacter& character) {
    return isAscii(character) && scriptOf(character.code) != Script::mark;
}

// Rings and bars are parts of many characters.
bool isPartOfMany(char32_t character) {
    return std::u32string_view(U"oO0Q|lI1").find(character) != std::u32string_view::npos;
}

bool covers(const ReadCharacter& character, const ReadCharacter& part, double tolerance) {
    return centerOf(part) > character.left - tolerance && centerOf(part) < character.right + tolerance;
}

using Iterator = Reading::const_iterator;

double meanConfidence(Iterator from, Iterator to) {
    double sum = 0;
    for (auto i = from; i != to; ++i) sum += i->confidence;
    return from == to ? 0 : sum / static_cast<double>(to - from);
}

// How much worse than a gap it is to take two characters for the same place of the line.
double pairCost(const ReadCharacter& a, const ReadCharacter& b, double glyphHeight) {
    const double distance = std::abs(centerOf(a) - centerOf(b)) / glyphHeight;
    if (distance > 2.5) return std::numeric_limits<double>::infinity();
    const double difference = a.code == b.code ? 0 : simplified(a.code) == simplified(b.code) ? 0.2 : 0.8;
    return difference + 0.25 * distance;
}

// The two characters stand at the same place: is the network's the right one?
bool networkIsRight(const ReadCharacter& network, const ReadCharacter& other,
                    const std::function<bool(char32_t)>& knows) {
    const bool marks = scriptOf(network.code) == Script::mark || scriptOf(network.code) == Script::wideMark;
    const bool otherMarks = scriptOf(other.code) == Script::mark || scriptOf(other.code) == Script::wideMark;
    if (marks && (otherMarks || other.code == U'・')) return network.confidence >= 0.5F;
    if (!knows(other.code)) return other.confidence < 0.5F;
    if (simplified(network.code) == simplified(other.code)) return false;
    return network.confidence >= 0.9F || network.confidence >= other.confidence;
}

class Joiner {
public:
    Joiner(double glyphHeight, const std::function<bool(char32_t)>& knows) : glyphHeight_(glyphHeight), knows_(knows) {}

    // Joins what lies between two words of the network.
    void joinStretch(Iterator network, Iterator networkEnd, Iterator other, Iterator otherEnd) {
        const auto rows = static_cast<std::size_t>(networkEnd - network) + 1;
        const auto columns = static_cast<std::size_t>(otherEnd - other) + 1;
        std::vector<double> cost(rows * columns, 0);
        const auto at = [&](std::size_t i, std::size_t j) -> double& { return cost[i * columns + j]; };
        const auto pair = [&](std::size_t i, std::size_t j) {
            return pairCost(network[static_cast<std::ptrdiff_t>(i)], other[static_cast<std::ptrdiff_t>(j)],
                            glyphHeight_);
        };
        // From the end, so that the way back runs from the beginning.
        for (std::size_t i = rows; i-- > 0;) {
            for (std::size_t j = columns; j-- > 0;) {
                if (i + 1 == rows || j + 1 == columns) {
                    at(i, j) = gapCost * static_cast<double>(rows - 1 - i + columns - 1 - j);
                } else {
                    at(i, j) =
                        std::min({at(i + 1, j) + gapCost, at(i, j + 1) + gapCost, at(i + 1, j + 1) + pair(i, j)});
                }
            }
        }
        for (std::size_t i = 0, j = 0; i + 1 < rows || j + 1 < columns;) {
            if (i + 1 < rows && j + 1 < columns && at(i, j) == at(i + 1, j + 1) + pair(i, j)) {
                takePair(network[static_cast<std::ptrdiff_t>(i++)], other[static_cast<std::ptrdiff_t>(j++)]);
            } else if (j + 1 == columns || (i + 1 < rows && at(i, j) == at(i + 1, j) + gapCost)) {
                takeNetworkOnly(network[static_cast<std::ptrdiff_t>(i++)], other, otherEnd);
            } else {
                takeOtherOnly(other[static_cast<std::ptrdiff_t>(j++)], network, networkEnd);
            }
        }
    }

    void take(Iterator from, Iterator to) { joined_.insert(joined_.end(), from, to); }

    Reading result() { return std::move(joined_); }

private:
    static constexpr double gapCost = 0.6;

    void takePair(const ReadCharacter& network, const ReadCharacter& other) {
        const bool equal = network.code == other.code;
        joined_.push_back(equal || networkIsRight(network, other, knows_) ? network : other);
        if (equal) joined_.back().confidence = std::max(network.confidence, other.confidence);
        joined_.back().spaceBefore = std::max(network.spaceBefore, other.spaceBefore);
    }

    void takeNetworkOnly(const ReadCharacter& network, Iterator other, Iterator otherEnd) {
        const bool covered = std::any_of(other, otherEnd, [&](const ReadCharacter& character) {
            return isWide(character.code) &&
                   covers(character, network, isPartOfMany(network.code) ? 0.25 * glyphHeight_ : 0);
        });
        if (!covered && network.confidence >= (isAscii(network) ? 0.8F : 0.9F)) joined_.push_back(network);
    }

    void takeOtherOnly(const ReadCharacter& other, Iterator network, Iterator networkEnd) {
        const bool covered = isAscii(other) && std::any_of(network, networkEnd, [&](const ReadCharacter& character) {
                                 return std::abs(centerOf(other) - centerOf(character)) < 0.35 * glyphHeight_;
                             });
        if (!covered && other.confidence >= (knows_(other.code) ? 0.85F : 0.5F)) joined_.push_back(other);
    }

    double glyphHeight_;
    const std::function<bool(char32_t)>& knows_;
    Reading joined_;
};

// The next Latin word or run of words of the network's reading that is long and sure enough to be believed. Ink that it
// couldn't read ends the run.
std::pair<Iterator, Iterator> nextLatinRun(Iterator from, Iterator end, double glyphHeight) {
    while (from != end) {
        const auto first = std::find_if(from, end, isLatin);
        auto last = first;
        while (last != end && isAscii(*last) &&
               (last == first || centerOf(*last) - centerOf(*std::prev(last)) < 1.5 * glyphHeight)) {
            ++last;
        }
        // Every reader knows digits: a number alone needs no protection.
        const auto letters = std::count_if(first, last, [](const ReadCharacter& character) {
            return isAscii(character) && scriptOf(character.code) == Script::latin;
        });
        if (letters >= 2 && std::count_if(first, last, isLatin) >= 3 && meanConfidence(first, last) >= 0.85)
            return {first, last};
        from = last;
    }
    return {end, end};
}

}  // namespace

double unexplainedInk(const Reading& reading, const LinePiece& piece) {
    const double height = piece.glyphHeight();
    int total = 0;
    int unexplained = 0;
    std::size_t next = 0;
    for (const auto& run : piece.runs) {
        for (int x = run.left; x < run.right; ++x) {
            ++total;
            while (next + 1 < reading.size() &&
                   std::abs(centerOf(reading[next + 1]) - x) <= std::abs(centerOf(reading[next]) - x)) {
                ++next;
            }
            const double reach = reading.empty() ? 0 : isWide(reading[next].code) ? 0.65 * height : 0.5 * height;
            if (reading.empty() || std::abs(centerOf(reading[next]) - x) > reach) ++unexplained;
        }
    }
    return total == 0 ? 0 : unexplained / static_cast<double>(total);
}

Reading joinReadings(const Reading& network, const Reading& other, double glyphHeight,
                     const std::function<bool(char32_t)>& knows) {
    Joiner joiner(glyphHeight, knows);
    auto i = network.begin();
    auto j = other.begin();
    while (i != network.end()) {
        auto [first, last] = nextLatinRun(i, network.end(), glyphHeight);
        // Where a letter at the edge lies on a character that the network can't name, the letter is a part of that.
        const auto covering = [&](const ReadCharacter& letter) {
            return std::any_of(j, other.end(), [&](const ReadCharacter& character) {
                const bool part = isPartOfMany(letter.code);
                return !knows(character.code) &&
                       character.confidence > (part ? 0.85F : std::max(0.9F, letter.confidence)) &&
                       covers(character, letter, part ? 0.25 * glyphHeight : 0);
            });
        };
        while (first != last && covering(*first)) ++first;
        while (first != last && covering(*std::prev(last))) --last;
        if (first == last) {
            if (last == network.end()) break;
            first = last = network.end();
        }
        const double left =
            first == network.end() ? std::numeric_limits<double>::infinity() : centerOf(*first) - 0.3 * glyphHeight;
        const double right = first == network.end() ? left : centerOf(*std::prev(last)) + 0.3 * glyphHeight;
        const auto before =
            std::find_if(j, other.end(), [&](const ReadCharacter& character) { return centerOf(character) > left; });
        const auto after = std::find_if(before, other.end(),
                                        [&](const ReadCharacter& character) { return centerOf(character) > right; });
        joiner.joinStretch(i, first, j, before);
        joiner.take(first, last);
        i = last;
        j = after;
    }
    joiner.joinStretch(i, network.end(), j, other.end());
    return joiner.result();
}

}  // namespace ovrin
