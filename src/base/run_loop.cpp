#include "base/run_loop.h"

#include <optional>
#include <utility>
#include <vector>

namespace ovrin {

RunLoop::RunLoop() : thread_(std::this_thread::get_id()) {}

RunLoop::~RunLoop() {
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

void RunLoop::post(Work work) {
    // Told under the lock: the work may be what ends the loop, and then nothing of it may be touched afterwards.
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    changed_.notify_one();
}

EventLoop::TimerId RunLoop::postAfter(Duration delay, Work work) {
    const std::lock_guard lock(mutex_);
    const TimerId id = timers_.add(TimerQueue::dueAfter(now(), delay), std::move(work));
    changed_.notify_one();
    return id;
}

void RunLoop::cancelTimer(TimerId timer) {
    std::optional<Work> dropped;
    const std::lock_guard lock(mutex_);
    dropped = timers_.cancel(timer);
}

EventLoop::TimePoint RunLoop::now() const {
    return std::chrono::steady_clock::now();
}

bool RunLoop::isCurrent() const {
    return std::this_thread::get_id() == thread_;
}

void RunLoop::run() {
    std::unique_lock lock(mutex_);
    while (!quitting_) {
        // Timers move to the end of the queue when they fall due, so that neither kind of work starves the other.
        while (const auto due = timers_.popDue(now())) queue_.emplace_back([this, id = *due] { runTimer(id); });
        if (!queue_.empty()) {
            Work work = std::move(queue_.front());
            queue_.pop_front();
            lock.unlock();
            perform(work);
            work = nullptr;  // before locking: what it holds may post when it goes
            lock.lock();
        } else if (const auto due = timers_.nextDue()) {
            changed_.wait_until(lock, *due);
        } else {
            changed_.wait(lock);
        }
    }
    quitting_ = false;
}

void RunLoop::runTimer(TimerId timer) {
    std::optional<Work> work;
    {
        const std::lock_guard lock(mutex_);
        work = timers_.take(timer);
    }
    if (work) (*work)();
}

void RunLoop::quit() {
    const std::lock_guard lock(mutex_);
    quitting_ = true;
    changed_.notify_one();
}

}  // namespace ovrin
