#include "model/line_reader.h"

#include <algorithm>
#include <utility>

#include "model/deep_seek_error.h"

namespace ovrin {

void LineReader::append(std::string chunk) {
    holdsCarriageReturns_ = chunk.find('\r') != std::string::npos;
    if (start_ == buffer_.size()) {
        buffer_ = std::move(chunk);
        searched_ = 0;
    } else {
        buffer_.erase(0, start_).append(chunk);
        searched_ -= start_;
    }
    start_ = 0;
}

std::optional<std::string_view> LineReader::next() {
    if (isAfterCarriageReturn_ && start_ < buffer_.size()) {
        isAfterCarriageReturn_ = false;
        if (buffer_[start_] == '\n') ++start_;
        searched_ = start_;
    }
    const std::size_t end = findLineEnd();
    if (std::min(end, buffer_.size()) - start_ > maximumLineLength) {
        throw DeepSeekError::decoding("服务发送的一行数据超过 16 MiB。");
    }
    if (end == std::string::npos) return std::nullopt;
    isAfterCarriageReturn_ = buffer_[end] == '\r';
    return takeLine(end);
}

std::optional<std::string_view> LineReader::finish() {
    if (start_ == buffer_.size()) return std::nullopt;
    return takeLine(buffer_.size());
}

// Looks for both ends window by window, so that a body with only one kind of line end is still read in linear time.
std::size_t LineReader::findLineEnd() {
    constexpr std::size_t windowSize = 512;
    while (searched_ < buffer_.size()) {
        const std::string_view window = std::string_view(buffer_).substr(searched_, windowSize);
        const std::size_t lineFeed = window.find('\n');
        const std::size_t carriageReturn =
            holdsCarriageReturns_ ? window.substr(0, lineFeed).find('\r') : std::string_view::npos;
        const std::size_t end = std::min(lineFeed, carriageReturn);
        if (end != std::string_view::npos) return searched_ + end;
        searched_ += window.size();
    }
    return std::string::npos;
}

std::string_view LineReader::takeLine(std::size_t end) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view line = std::string_view(buffer_).substr(start_, end - start_);
    if (std::exchange(isFirstLine_, false) && line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
    start_ = searched_ = std::min(end + 1, buffer_.size());
    return line;
}

}  // namespace ovrin
