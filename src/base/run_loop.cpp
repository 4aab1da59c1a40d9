#include "base/run_loop.h"

#include <utility>

namespace ovrin {

RunLoop::RunLoop() : thread_(std::this_thread::get_id()) {}

void RunLoop::post(Work work) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    changed_.notify_one();
}

EventLoop::TimerId RunLoop::postAfter(Duration delay, Work work) {
    TimerId id{};
    {
        const std::lock_guard lock(mutex_);
        id = timers_.add(now() + delay, std::move(work));
    }
    changed_.notify_one();
    return id;
}

void RunLoop::cancelTimer(TimerId timer) {
    const std::lock_guard lock(mutex_);
    timers_.cancel(timer);
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
        while (auto due = timers_.takeDue(now())) queue_.push_back(std::move(*due));
        if (!queue_.empty()) {
            const Work work = std::move(queue_.front());
            queue_.pop_front();
            lock.unlock();
            work();
            lock.lock();
        } else if (const auto due = timers_.nextDue()) {
            changed_.wait_until(lock, *due);
        } else {
            changed_.wait(lock);
        }
    }
    quitting_ = false;
}

void RunLoop::quit() {
    {
        const std::lock_guard lock(mutex_);
        quitting_ = true;
    }
    changed_.notify_one();
}

}  // namespace ovrin
