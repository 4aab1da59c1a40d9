// An event loop whose time is moved by hand, so that "after 1.8 seconds" is exact and takes no time.
#pragma once

#include <functional>

#include "base/queue_loop.h"

namespace ovrin {

class VirtualLoop final : public QueueLoop {
public:
    VirtualLoop() = default;
    VirtualLoop(const VirtualLoop&) = delete;
    VirtualLoop& operator=(const VirtualLoop&) = delete;
    ~VirtualLoop() override { dropWork(); }

    // Starts at zero.
    TimePoint now() const override;

    // Runs what is posted, and what that posts, without moving the time on.
    void runPosted();

    // Moves the time on, stopping at every timer on the way to run it and what it posts.
    void advance(Duration duration);

    // Runs posted work, waiting for other threads to post more, until the condition holds. The time stands still.
    void runUntil(const std::function<bool()>& condition);

private:
    TimePoint time() const override { return now_; }
    bool runOne();

    TimePoint now_{};  // guarded by the mutex
};

}  // namespace ovrin
