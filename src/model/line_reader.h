// Cuts a body that arrives in chunks of any size into lines: at a line feed, a carriage return, or both together.
//
// Keeps no more than the unfinished line, and refuses lines that never end. A byte order mark at the very start is
// dropped. The bytes of a line are given as they came.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

class LineReader {
public:
    static constexpr std::size_t maximumLineLength = std::size_t{16} << 20U;  // bytes

    // Takes more of the body, after next() has given all lines of what came before.
    void append(std::string chunk);

    // The next whole line without its end, none when more bytes are needed. The view lasts until the next call. Throws
    // DeepSeekError decoding when the line is longer than the maximum.
    std::optional<std::string_view> next();

    // After the last chunk: the line that the body ended without ending; none when there is none.
    std::optional<std::string_view> finish();

private:
    std::size_t findLineEnd();
    std::string_view takeLine(std::size_t end);

    std::string buffer_;
    std::size_t start_ = 0;              // of the line that comes next, in the buffer
    std::size_t searched_ = 0;           // no line ends between start_ and here
    bool holdsCarriageReturns_ = false;  // in what is still to be searched; most bodies have none
    bool isAfterCarriageReturn_ = false;
    bool isFirstLine_ = true;
};

}  // namespace ovrin
