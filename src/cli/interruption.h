// Ctrl-C and SIGTERM as a request to stop instead of a sudden death.
#pragma once

#include <csignal>
#include <optional>
#include <stop_token>
#include <thread>

namespace ovrin::cli {

// While it lives, SIGINT and SIGTERM ask for a stop. Make it before any other thread starts: they inherit the blocked
// signals, so that only this object's thread hears them.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    std::stop_token token() const { return stop_.get_token(); }

private:
    sigset_t previous_{};
    std::stop_source stop_;
    std::thread listener_;
};

}  // namespace ovrin::cli
