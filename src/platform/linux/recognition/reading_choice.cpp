#include "platform/linux/recognition/reading_choice.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

double centerOf(const ReadCharacter& character) { return (character.left + character.right) / 2; }

bool isLatin(const ReadCharacter& character) {
    const Script script = scriptOf(character.code);
    return script == Script::latin || script == Script::digit;
}

// A stretch where the readings differ: [from, to) of each.
struct Difference {
    std::size_t networkFrom, networkTo;
    std::size_t otherFrom, otherTo;
};

// Where each character of one reading has an equal partner in the other: pairs in rising order.
using Alignment = std::vector<std::pair<std::size_t, std::size_t>>;

Alignment align(const Reading& network, const Reading& other, double glyphHeight) {
    constexpr double gap = 0.7;
    const std::size_t rows = network.size() + 1;
    const std::size_t columns = other.size() + 1;
    std::vector<double> cost(rows * columns, 0);
    const auto at = [&](std::size_t i, std::size_t j) -> double& { return cost[i * columns + j]; };
    const auto pairCost = [&](std::size_t i, std::size_t j) {
        const double distance = std::abs(centerOf(network[i]) - centerOf(other[j])) / glyphHeight;
        if (distance > 1.5) return std::numeric_limits<double>::infinity();
        double difference = 1;
        if (network[i].code == other[j].code) {
            difference = 0;
        } else if (simplified(network[i].code) == simplified(other[j].code)) {
            difference = 0.2;
        }
        return difference + 0.4 * distance;
    };
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            if (i == 0 || j == 0) {
                at(i, j) = gap * static_cast<double>(i + j);
                continue;
            }
            at(i, j) = std::min({at(i - 1, j) + gap, at(i, j - 1) + gap, at(i - 1, j - 1) + pairCost(i - 1, j - 1)});
        }
    }
    Alignment matches;
    for (std::size_t i = network.size(), j = other.size(); i > 0 && j > 0;) {
        if (at(i, j) == at(i - 1, j - 1) + pairCost(i - 1, j - 1)) {
            --i;
            --j;
            if (network[i].code == other[j].code) matches.emplace_back(i, j);
        } else if (at(i, j) == at(i - 1, j) + gap) {
            --i;
        } else {
            --j;
        }
    }
    std::reverse(matches.begin(), matches.end());
    return matches;
}

double meanConfidence(const Reading& reading, std::size_t from, std::size_t to) {
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) sum += reading[i].confidence;
    return from == to ? 0 : sum / static_cast<double>(to - from);
}

// How long the run of Latin letters and digits is that the stretch of the network's reading belongs to; 0 when the
// stretch holds anything else.
std::size_t latinRun(const Reading& reading, std::size_t from, std::size_t to) {
    const auto ascii = [](const ReadCharacter& character) { return character.code < 0x80; };
    if (!std::all_of(reading.begin() + static_cast<std::ptrdiff_t>(from), reading.begin() + static_cast<std::ptrdiff_t>(to),
                     ascii))
        return 0;
    while (from > 0 && ascii(reading[from - 1])) --from;
    while (to < reading.size() && ascii(reading[to])) ++to;
    return static_cast<std::size_t>(std::count_if(reading.begin() + static_cast<std::ptrdiff_t>(from),
                                                  reading.begin() + static_cast<std::ptrdiff_t>(to), isLatin));
}

bool networkIsRight(const Reading& network, const Reading& other, const Difference& difference,
                    const std::function<bool(char32_t)>& knows) {
    const auto [networkFrom, networkTo, otherFrom, otherTo] = difference;
    const double networkConfidence = meanConfidence(network, networkFrom, networkTo);
    const double otherConfidence = meanConfidence(other, otherFrom, otherTo);
    bool otherIsKnown = true;
    for (std::size_t j = otherFrom; j < otherTo; ++j) otherIsKnown = otherIsKnown && knows(other[j].code);
    if (otherFrom == otherTo) {
        return networkConfidence >= (latinRun(network, networkFrom, networkTo) > 0 ? 0.8 : 0.9);
    }
    if (networkFrom == networkTo) return otherConfidence < (otherIsKnown ? 0.85 : 0.5);
    if (latinRun(network, networkFrom, networkTo) >= 3 && networkConfidence > 0.6) return true;
    if (!otherIsKnown) return otherConfidence < 0.5;
    if (networkTo - networkFrom == otherTo - otherFrom) {
        bool variants = true;
        for (std::size_t k = 0; k < networkTo - networkFrom; ++k) {
            variants = variants && simplified(network[networkFrom + k].code) == simplified(other[otherFrom + k].code);
        }
        if (variants) return false;
    }
    return networkConfidence >= 0.9 || networkConfidence >= otherConfidence;
}

}  // namespace

double unexplainedInk(const Reading& reading, const LinePiece& piece) {
    const double height = std::max(1, piece.inkBox.height);
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
    Reading joined;
    Alignment matches = align(network, other, glyphHeight);
    matches.emplace_back(network.size(), other.size());
    std::size_t i = 0;
    std::size_t j = 0;
    for (const auto& [matchI, matchJ] : matches) {
        const Difference difference{i, matchI, j, matchJ};
        const bool chosen = networkIsRight(network, other, difference, knows);
        const auto& source = chosen ? network : other;
        joined.insert(joined.end(), source.begin() + static_cast<std::ptrdiff_t>(chosen ? i : j),
                      source.begin() + static_cast<std::ptrdiff_t>(chosen ? matchI : matchJ));
        if (matchI < network.size()) {
            joined.push_back(network[matchI]);
            joined.back().confidence = std::max(joined.back().confidence, other[matchJ].confidence);
            joined.back().spaceBefore = std::max(joined.back().spaceBefore, other[matchJ].spaceBefore);
        }
        i = matchI + 1;
        j = matchJ + 1;
    }
    return joined;
}

}  // namespace ovrin
