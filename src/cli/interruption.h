// Ctrl-C and SIGTERM as a request to stop instead of a sudden death.
#pragma once

#include <atomic>
#include <csignal>
#include <stop_token>
#include <thread>

namespace ovrin::cli {

// While it lives, the first SIGINT or SIGTERM asks for a stop; the next one ends the process on the spot. Make it
// before any other thread starts: they inherit the blocked signals, so that only this object's thread hears them.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    std::stop_token token() const { return stop_.get_token(); }

    // The exit status of a program that this signal ended (128 + its number, as shells have it); 0 when none came.
    int exitStatus() const { return exitStatus_; }

private:
    sigset_t previous_{};
    std::stop_source stop_;
    std::atomic<int> exitStatus_{0};
    std::thread listener_;
};

}  // namespace ovrin::cli
