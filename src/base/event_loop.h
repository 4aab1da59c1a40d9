// The loop of one thread: work posted from anywhere runs on it, one piece after another, in order.
//
// Coroutines belong to a loop: they start, resume and die on its thread. The window system, the command line, the
// network thread and the tests each bring their own loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace ovrin {

class EventLoop {
public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;
    using Work = std::function<void()>;
    enum class TimerId : std::uint64_t {};

    virtual ~EventLoop() = default;

    // Runs the work on the loop's thread, after what was posted before. Any thread; the loop must still exist. An
    // exception that leaves the work is a programming error and ends the program. Work that has not run when the loop
    // goes is destroyed with it.
    virtual void post(Work work) = 0;

    // Runs the work once, not before the delay has passed; equal due times run in the order of the calls. Any thread.
    virtual TimerId postAfter(Duration delay, Work work) = 0;

    // Forgets a timer; one that has run or was cancelled before is ignored. On the loop's thread the work is certain
    // not to run afterwards, even when it was due already.
    virtual void cancelTimer(TimerId timer) = 0;

    // The loop's monotonic clock. Any thread.
    virtual TimePoint now() const = 0;

    // True on the loop's own thread.
    virtual bool isCurrent() const = 0;

protected:
    static void perform(const Work& work) noexcept { work(); }
};

}  // namespace ovrin
