#include "model/thinking_filter.h"

#include <algorithm>
#include <utility>

namespace ovrin {

namespace {

constexpr std::string_view openingTag = "<think>";
constexpr std::string_view closingTag = "</think>";
constexpr std::string_view blanks = " \t\r";
constexpr std::string_view whiteSpace = " \t\r\n";
// A closing tag that was never opened is looked for so far, in bytes.
constexpr std::size_t watchedSize = std::size_t{64} << 10U;
// As much of a line as tells whether a code block begins or ends there.
constexpr std::size_t lineBeginning = 128;
constexpr std::size_t shortestFence = 3;
constexpr std::size_t deepestFence = 3;  // spaces before it

std::string_view withoutLeading(std::string_view text, std::string_view characters) {
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

bool isBlank(std::string_view text) {
    return withoutLeading(text, blanks).empty();
}

bool isClosingTag(std::string_view line) {
    const std::string_view text = withoutLeading(line, blanks);
    return text.starts_with(closingTag) && isBlank(text.substr(closingTag.size()));
}

// Whether the line is the closing tag, or can become it.
bool mayBeClosingTag(std::string_view line, bool isWhole) {
    return isClosingTag(line) || (!isWhole && closingTag.starts_with(withoutLeading(line, blanks)));
}

// How much of the end can be the beginning of the tag.
std::size_t overlap(std::string_view text, std::string_view tag) {
    std::size_t length = std::min(text.size(), tag.size() - 1);
    while (!text.ends_with(tag.substr(0, length))) --length;
    return length;
}

}  // namespace

void ThinkingFilter::feed(std::string_view piece, std::vector<AnswerChange>& changes) {
    if (piece.empty() && state_ == State::beginning && !std::exchange(hasToldThinking_, true)) {
        changes.push_back({.kind = AnswerChange::Kind::thinking});
    }
    pending_ += piece;
    while (!pending_.empty() && step(changes)) {
    }
    flush(changes);
}

void ThinkingFilter::finish(std::vector<AnswerChange>& changes) {
    if (state_ == State::watching && isClosingTag(pending_)) takeBack(changes);
    if (state_ != State::thinking && state_ != State::afterThought) ready_ += pending_;
    pending_.clear();
    flush(changes);
}

// Each looks at what is pending, and tells whether there is more to look at.
bool ThinkingFilter::step(std::vector<AnswerChange>& changes) {
    switch (state_) {
        case State::beginning:
            return begin(changes);
        case State::thinking:
            return think();
        case State::afterThought:
            return skipBlank();
        case State::watching:
            return watchLine(changes);
        case State::answering:
            ready_ += std::exchange(pending_, {});
            break;
    }
    return false;
}

bool ThinkingFilter::begin(std::vector<AnswerChange>& changes) {
    const std::string_view text = withoutLeading(pending_, whiteSpace);
    if (text.starts_with(openingTag)) {
        if (!std::exchange(hasToldThinking_, true)) changes.push_back({.kind = AnswerChange::Kind::thinking});
        pending_ = std::string(text.substr(openingTag.size()));
        state_ = State::thinking;
        return true;
    }
    if (openingTag.starts_with(text)) return false;
    state_ = State::watching;
    return true;
}

bool ThinkingFilter::think() {
    const auto end = pending_.find(closingTag);
    if (end == std::string::npos) {
        pending_.erase(0, pending_.size() - overlap(pending_, closingTag));
        return false;
    }
    pending_.erase(0, end + closingTag.size());
    state_ = State::afterThought;
    return true;
}

bool ThinkingFilter::skipBlank() {
    pending_ = std::string(withoutLeading(pending_, whiteSpace));
    if (!pending_.empty()) state_ = State::answering;
    return !pending_.empty();
}

bool ThinkingFilter::watchLine(std::vector<AnswerChange>& changes) {
    const auto end = pending_.find('\n');
    const bool isWhole = end != std::string::npos;
    const std::size_t length = isWhole ? end + 1 : pending_.size();
    const std::string_view line = std::string_view(pending_).substr(0, isWhole ? end : length);
    if (!isBegun_ && fence_ == '\0' && mayBeClosingTag(line, isWhole)) {
        if (!isWhole) return false;
        takeBack(changes);
    } else {
        follow(line, isWhole);
        ready_.append(pending_, 0, length);
        watched_ += length;
        if (isWhole && watched_ >= watchedSize) state_ = State::answering;
    }
    pending_.erase(0, length);
    return true;
}

void ThinkingFilter::takeBack(std::vector<AnswerChange>& changes) {
    changes.push_back({.kind = AnswerChange::Kind::replaced});
    ready_.clear();
    state_ = State::afterThought;
}

// Keeps account of the code block that is open.
void ThinkingFilter::follow(std::string_view lineSoFar, bool isWhole) {
    line_.append(lineSoFar.substr(0, lineBeginning - std::min(line_.size(), lineBeginning)));
    isBegun_ = !isWhole;
    if (!isWhole) return;
    const std::string line = std::exchange(line_, {});
    const std::string_view text = withoutLeading(line, " ");
    const char mark = text.empty() ? '\0' : text.front();
    if (line.size() - text.size() > deepestFence || (mark != '`' && mark != '~')) return;
    const std::size_t length = std::min(text.find_first_not_of(mark), text.size());
    if (fence_ == '\0' && length >= shortestFence && (mark == '~' || text.find('`', length) == std::string::npos)) {
        fence_ = mark;
        fenceLength_ = length;
    } else if (fence_ == mark && length >= fenceLength_ && isBlank(text.substr(length))) {
        fence_ = '\0';
    }
}

void ThinkingFilter::flush(std::vector<AnswerChange>& changes) {
    if (!ready_.empty()) changes.push_back({.text = std::exchange(ready_, {})});
}

std::string withoutThinking(std::string_view answer) {
    ThinkingFilter filter;
    std::vector<AnswerChange> changes;
    filter.feed(answer, changes);
    filter.finish(changes);
    std::string text;
    for (const AnswerChange& change : changes) change.applyTo(text);
    return text;
}

}  // namespace ovrin
