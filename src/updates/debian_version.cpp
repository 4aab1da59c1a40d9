#include "updates/debian_version.h"

#include <algorithm>

namespace ovrin {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

struct Parts {
    std::string_view epoch;
    std::string_view upstream;
    std::string_view revision;
};

Parts parts(std::string_view version) {
    Parts result{.epoch = "0", .upstream = version, .revision = "0"};
    if (const auto colon = version.find(':'); colon != std::string_view::npos) {
        result.epoch = version.substr(0, colon);
        result.upstream.remove_prefix(colon + 1);
    }
    if (const auto hyphen = result.upstream.rfind('-'); hyphen != std::string_view::npos) {
        result.revision = result.upstream.substr(hyphen + 1);
        result.upstream = result.upstream.substr(0, hyphen);
    }
    return result;
}

bool hasOnly(std::string_view text, std::string_view punctuation) {
    return std::ranges::all_of(text, [punctuation](char character) {
        return isDigit(character) || isLetter(character) || punctuation.find(character) != std::string_view::npos;
    });
}

std::string_view takeWhile(std::string_view& text, bool (*isTaken)(char)) {
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(text, isTaken) - text.begin());
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

// Letters come before all other characters, the end before letters, and a tilde before the end.
int rank(std::string_view text, std::size_t index) {
    constexpr int beyondLetters = 256;
    if (index >= text.size()) return 0;
    if (text[index] == '~') return -1;
    const int code = static_cast<unsigned char>(text[index]);
    return isLetter(text[index]) ? code : code + beyondLetters;
}

std::weak_ordering compareTexts(std::string_view first, std::string_view second) {
    for (std::size_t i = 0; i < std::max(first.size(), second.size()); ++i) {
        if (const auto order = rank(first, i) <=> rank(second, i); std::is_neq(order)) return order;
    }
    return std::weak_ordering::equivalent;
}

// Of any length: numbers need not fit into an integer.
std::weak_ordering compareNumbers(std::string_view first, std::string_view second) {
    const auto isZero = [](char character) { return character == '0'; };
    takeWhile(first, isZero);
    takeWhile(second, isZero);
    if (first.size() != second.size()) return first.size() <=> second.size();
    return first <=> second;
}

std::weak_ordering compareAlternating(std::string_view first, std::string_view second) {
    const auto isNoDigit = [](char character) { return !isDigit(character); };
    while (!first.empty() || !second.empty()) {
        const std::string_view firstText = takeWhile(first, isNoDigit);
        const std::string_view secondText = takeWhile(second, isNoDigit);
        if (const auto order = compareTexts(firstText, secondText); std::is_neq(order)) return order;
        const std::string_view firstNumber = takeWhile(first, isDigit);
        const std::string_view secondNumber = takeWhile(second, isDigit);
        if (const auto order = compareNumbers(firstNumber, secondNumber); std::is_neq(order)) return order;
    }
    return std::weak_ordering::equivalent;
}

}  // namespace

bool isDebianVersion(std::string_view text) {
    const auto [epoch, upstream, revision] = parts(text);
    return !epoch.empty() && std::ranges::all_of(epoch, isDigit) && !upstream.empty() && isDigit(upstream.front()) &&
           hasOnly(upstream, ".+-~") && !revision.empty() && hasOnly(revision, ".+~");
}

std::weak_ordering compareDebianVersions(std::string_view first, std::string_view second) {
    const Parts one = parts(first);
    const Parts other = parts(second);
    if (const auto order = compareNumbers(one.epoch, other.epoch); std::is_neq(order)) return order;
    if (const auto order = compareAlternating(one.upstream, other.upstream); std::is_neq(order)) return order;
    return compareAlternating(one.revision, other.revision);
}

}  // namespace ovrin
