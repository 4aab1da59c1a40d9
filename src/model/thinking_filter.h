// Keeps what a model thinks out of its answer: a <think>…</think> stretch at the beginning.
//
// Some services swallow the opening tag. A </think> alone on its line, near the beginning and in no code block, ends
// such a stretch, which has been delivered by then and is taken back. Tags anywhere else are text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/answer_change.h"

namespace ovrin {

class ThinkingFilter {
public:
    // Appends what the next piece of the answer changes. Pieces may cut a tag anywhere; an empty one says that the
    // service tells of thinking by other means.
    void feed(std::string_view piece, std::vector<AnswerChange>& changes);

    // The answer has ended: what was kept for a tag that did not come is text. Thoughts without an end are none.
    void finish(std::vector<AnswerChange>& changes);

private:
    enum class State : std::uint8_t {
        beginning,     // white space, or part of an opening tag
        thinking,      // behind an opening tag
        afterThought,  // the white space behind a closing tag
        watching,      // for a closing tag that was never opened
        answering      // all else is the answer
    };

    bool step(std::vector<AnswerChange>& changes);
    bool begin(std::vector<AnswerChange>& changes);
    bool think();
    bool skipBlank();
    bool watchLine(std::vector<AnswerChange>& changes);
    void takeBack(std::vector<AnswerChange>& changes);
    void follow(std::string_view lineSoFar, bool isWhole);
    void flush(std::vector<AnswerChange>& changes);

    State state_ = State::beginning;
    bool hasToldThinking_ = false;
    std::string pending_;  // not yet looked at, or kept for a tag
    std::string ready_;    // to be delivered

    // Of the line that is being watched.
    std::string line_;  // its beginning
    bool isBegun_ = false;
    char fence_ = '\0';  // of the code block that is open
    std::size_t fenceLength_ = 0;
    std::size_t watched_ = 0;  // bytes
};

// A whole answer without what the model thinks.
std::string withoutThinking(std::string_view answer);

}  // namespace ovrin
