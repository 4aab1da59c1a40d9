// Reads a streamed answer to its end, whatever that is.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/async_stream.h"
#include "base/task.h"

namespace ovrin {

struct AnswerEnd {
    enum class Kind : std::uint8_t { complete, failed };

    Kind kind = Kind::complete;
    // What the user reads about a failure; none when the producer was merely cancelled, which shows no message.
    std::optional<std::string> errorMessage{};
};

// append is called with every piece in order. Throws nothing; a cancelled reader is destroyed where it waits.
Task<AnswerEnd> readAnswer(AsyncStream<std::string> pieces, std::function<void(const std::string& piece)> append);

}  // namespace ovrin
