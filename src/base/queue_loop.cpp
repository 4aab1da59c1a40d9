#include "base/queue_loop.h"

#include <utility>
#include <vector>

namespace ovrin {

QueueLoop::QueueLoop() : thread_(std::this_thread::get_id()) {}

void QueueLoop::dropWork() {
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

void QueueLoop::post(Work work) {
    // Told under the lock: the work may be what ends the loop, and then nothing of it may be touched afterwards.
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    changed_.notify_one();
}

EventLoop::TimerId QueueLoop::postAfter(Duration delay, Work work) {
    const std::lock_guard lock(mutex_);
    const TimerId id = timers_.add(TimerQueue::dueAfter(time(), delay), std::move(work));
    changed_.notify_one();
    return id;
}

void QueueLoop::cancelTimer(TimerId timer) {
    std::optional<Work> dropped;
    const std::lock_guard lock(mutex_);
    dropped = timers_.cancel(timer);
}

bool QueueLoop::isCurrent() const {
    return std::this_thread::get_id() == thread_;
}

bool QueueLoop::hasWork() const {
    const std::optional<TimePoint> due = timers_.nextDue();
    return !queue_.empty() || (due && *due <= time());
}

std::optional<EventLoop::Work> QueueLoop::takeNext() {
    // Timers move to the end of the queue when they fall due, so that neither kind of work starves the other.
    while (const auto due = timers_.popDue(time())) queue_.emplace_back([this, id = *due] { runTimer(id); });
    if (queue_.empty()) return std::nullopt;
    std::optional<Work> work(std::move(queue_.front()));
    queue_.pop_front();
    return work;
}

void QueueLoop::runTimer(TimerId timer) {
    std::optional<Work> work;
    {
        const std::lock_guard lock(mutex_);
        work = timers_.take(timer);
    }
    if (work) (*work)();
}

}  // namespace ovrin
