#include "base/virtual_loop.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace ovrin {

VirtualLoop::VirtualLoop() : thread_(std::this_thread::get_id()) {}

VirtualLoop::~VirtualLoop() {
    // While the work is destroyed, what it holds may still post to this loop.
    std::deque<Work> queue;
    std::vector<Work> timers;
    do {
        queue.clear();
        timers.clear();
        const std::lock_guard lock(mutex_);
        queue.swap(queue_);
        timers = timers_.takeAll();
    } while (!queue.empty() || !timers.empty());
}

void VirtualLoop::post(Work work) {
    // Told under the lock: the work may be what ends the loop, and then nothing of it may be touched afterwards.
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    changed_.notify_one();
}

EventLoop::TimerId VirtualLoop::postAfter(Duration delay, Work work) {
    const std::lock_guard lock(mutex_);
    const TimerId id = timers_.add(TimerQueue::dueAfter(now_, delay), std::move(work));
    changed_.notify_one();
    return id;
}

void VirtualLoop::cancelTimer(TimerId timer) {
    std::optional<Work> dropped;
    const std::lock_guard lock(mutex_);
    dropped = timers_.cancel(timer);
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
        while (const auto due = timers_.popDue(now_)) queue_.emplace_back([this, id = *due] { runTimer(id); });
        if (queue_.empty()) return false;
        work = std::move(queue_.front());
        queue_.pop_front();
    }
    perform(work);
    return true;
}

void VirtualLoop::runTimer(TimerId timer) {
    std::optional<Work> work;
    {
        const std::lock_guard lock(mutex_);
        work = timers_.take(timer);
    }
    if (work) (*work)();
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
            const std::optional<TimePoint> due = timers_.nextDue();
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
        changed_.wait(lock, [this] {
            const std::optional<TimePoint> due = timers_.nextDue();
            return !queue_.empty() || (due && *due <= now_);
        });
    }
}

}  // namespace ovrin
