#include "base/run_loop.h"

#include <optional>

namespace ovrin {

EventLoop::TimePoint RunLoop::now() const {
    return std::chrono::steady_clock::now();
}

void RunLoop::run() {
    std::unique_lock lock(mutex_);
    while (!quitting_) {
        if (std::optional<Work> work = takeNext()) {
            lock.unlock();
            perform(*work);
            work.reset();  // before locking: what it holds may post when it goes
            lock.lock();
        } else if (const auto due = nextDue()) {
            changed_.wait_until(lock, *due);
        } else {
            changed_.wait(lock);
        }
    }
    quitting_ = false;
}

void RunLoop::quit() {
    const std::lock_guard lock(mutex_);
    quitting_ = true;
    changed_.notify_one();
}

}  // namespace ovrin
