#include "base/virtual_loop.h"

#include <algorithm>
#include <optional>

namespace ovrin {

EventLoop::TimePoint VirtualLoop::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

bool VirtualLoop::runOne() {
    std::optional<Work> work;
    {
        const std::lock_guard lock(mutex_);
        work = takeNext();
    }
    if (work) perform(*work);
    return work.has_value();
}

void VirtualLoop::runPosted() {
    while (runOne()) {
    }
}

void VirtualLoop::advance(Duration duration) {
    const TimePoint end = TimerQueue::dueAfter(now(), duration);
    runPosted();
    while (true) {
        {
            const std::lock_guard lock(mutex_);
            const std::optional<TimePoint> due = nextDue();
            if (!due || *due > end) break;
            now_ = *due;
        }
        runPosted();
    }
    const std::lock_guard lock(mutex_);
    now_ = std::max(now_, end);  // work on the way may have moved the time on itself
}

void VirtualLoop::runUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        if (runOne()) continue;
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return hasWork(); });
    }
}

}  // namespace ovrin
