// An event loop whose time is moved by hand, so that "after 1.8 seconds" is exact and takes no time.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "base/event_loop.h"
#include "base/timer_queue.h"

namespace ovrin {

class VirtualLoop final : public EventLoop {
public:
    // The loop belongs to the thread that makes it; its clock starts at zero.
    VirtualLoop();
    VirtualLoop(const VirtualLoop&) = delete;
    VirtualLoop& operator=(const VirtualLoop&) = delete;
    ~VirtualLoop() override;

    void post(Work work) override;
    TimerId postAfter(Duration delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    TimePoint now() const override;
    bool isCurrent() const override;

    // Runs what is posted, and what that posts, without moving the time on.
    void runPosted();

    // Moves the time on, stopping at every timer on the way to run it and what it posts.
    void advance(Duration duration);

    // Runs posted work, waiting for other threads to post more, until the condition holds. The time stands still.
    void runUntil(const std::function<bool()>& condition);

private:
    bool runOne();
    void runTimer(TimerId timer);

    const std::thread::id thread_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> queue_;
    TimerQueue timers_;
    TimePoint now_{};
};

}  // namespace ovrin
