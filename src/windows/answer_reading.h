// Reads a streamed answer to its end, whatever that is.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/async_stream.h"
#include "base/published.h"
#include "base/task.h"
#include "model/answer_change.h"
#include "windows/thinking_time.h"

namespace ovrin {

struct AnswerEnd {
    enum class Kind : std::uint8_t { complete, failed };

    Kind kind = Kind::complete;
    // What the user reads about a failure; none when the producer was merely cancelled, which shows no message.
    std::optional<std::string> errorMessage{};

    // Whether it came to its end and there is nothing in it to read.
    bool isBlank(std::string_view answer) const;
};

// take is called with every change of the text in order, thinking with whether the model thinks now. Throws nothing; a
// cancelled reader is destroyed where it waits.
Task<AnswerEnd> readAnswer(AsyncStream<AnswerChange> changes, std::function<void(const AnswerChange& change)> take,
                           ThinkingTime& thinking);
// The same for an answer that is the whole of a text. The text outlives the reading.
Task<AnswerEnd> readAnswerInto(Published<std::string>& text, AsyncStream<AnswerChange> changes, ThinkingTime& thinking);

}  // namespace ovrin
