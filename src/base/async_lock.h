// Lets the tasks of one loop take turns over something that only one of them may use at a time, across their waits.
#pragma once

#include <coroutine>
#include <memory>
#include <utility>
#include <vector>

#include "base/suspension.h"
#include "base/task.h"

namespace ovrin {

// Has to outlive its turns.
class AsyncLock {
public:
    // Holding it is the turn; it ends with its life.
    class [[nodiscard]] Turn {
    public:
        explicit Turn(AsyncLock& lock) : lock_(&lock) {}
        Turn(Turn&& other) noexcept : lock_(std::exchange(other.lock_, nullptr)) {}
        Turn& operator=(Turn&&) = delete;
        ~Turn() {
            if (lock_ != nullptr) lock_->end();
        }

    private:
        AsyncLock* lock_;
    };

    AsyncLock() = default;
    AsyncLock(const AsyncLock&) = delete;
    AsyncLock& operator=(const AsyncLock&) = delete;

    // Waits until nobody has the turn; who asked first is asked first. Throws CancellationError when stopped.
    Task<Turn> turn() {
        while (isTaken_) co_await Waiting(waiting_);
        isTaken_ = true;
        co_return Turn(*this);
    }

private:
    class Waiting {
    public:
        explicit Waiting(std::vector<Resumer>& waiting) : waiting_(waiting) {}
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        bool await_suspend(std::coroutine_handle<Promise> awaiting) {
            if (!suspension_.begin(awaiting)) return false;
            waiting_.push_back(suspension_.resumer());
            return true;
        }
        void await_resume() const { suspension_.throwIfCancelled(); }

    private:
        std::vector<Resumer>& waiting_;
        Suspension suspension_;
    };

    // Wakes all who wait: the first of them that still lives takes the turn, the others wait again in the same order.
    void end() {
        isTaken_ = false;
        for (const Resumer& resumer : std::exchange(waiting_, {})) resumer.resume();
    }

    bool isTaken_ = false;
    std::vector<Resumer> waiting_;
};

}  // namespace ovrin
