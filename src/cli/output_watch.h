// Notices that the reader of standard output has gone while there is nothing to write.
#pragma once

#include <atomic>
#include <functional>
#include <stop_token>
#include <thread>

#include "cli/wakeable_wait.h"

namespace ovrin::cli {

// Watches on a thread of its own for as long as it lives.
class OutputWatch {
public:
    // stop: ends what the watch's token is given to as well.
    OutputWatch(int output, std::stop_token stop);
    OutputWatch(const OutputWatch&) = delete;
    OutputWatch& operator=(const OutputWatch&) = delete;
    ~OutputWatch();

    // Asked to stop when the reader goes.
    std::stop_token token() const { return stop_.get_token(); }
    bool readerHasGone() const { return readerHasGone_; }

private:
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> onOuterStop_;
    WakeableWait wait_;
    std::atomic<bool> readerHasGone_{false};
    std::thread watcher_;
};

}  // namespace ovrin::cli
