#include "base/virtual_loop.h"

#include <optional>
#include <utility>

namespace ovrin {

VirtualLoop::VirtualLoop() : thread_(std::this_thread::get_id()) {}

void VirtualLoop::post(Work work) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    changed_.notify_one();
}

EventLoop::TimerId VirtualLoop::postAfter(Duration delay, Work work) {
    const std::lock_guard lock(mutex_);
    return timers_.add(now_ + delay, std::move(work));
}

void VirtualLoop::cancelTimer(TimerId timer) {
    const std::lock_guard lock(mutex_);
    timers_.cancel(timer);
}

EventLoop::TimePoint VirtualLoop::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

bool VirtualLoop::isCurrent() const {
    return std::this_thread::get_id() == thread_;
}

bool VirtualLoop::runOne() {
    Work work;
    {
        const std::lock_guard lock(mutex_);
        while (auto due = timers_.takeDue(now_)) queue_.push_back(std::move(*due));
        if (queue_.empty()) return false;
        work = std::move(queue_.front());
        queue_.pop_front();
    }
    work();
    return true;
}

void VirtualLoop::runPosted() {
    while (runOne()) {
    }
}

void VirtualLoop::advance(Duration duration) {
    const TimePoint end = now() + duration;
    runPosted();
    while (true) {
        {
            const std::lock_guard lock(mutex_);
            const std::optional<TimePoint> due = timers_.nextDue();
            if (!due || *due > end) break;
            now_ = *due;
        }
        runPosted();
    }
    const std::lock_guard lock(mutex_);
    now_ = end;
}

void VirtualLoop::runUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        if (runOne()) continue;
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !queue_.empty(); });
    }
}

}  // namespace ovrin
