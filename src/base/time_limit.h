// runWithin(limit, task): lets a task take so long and no longer.
#pragma once

#include <coroutine>
#include <optional>
#include <utility>

#include "base/running_task.h"
#include "base/suspension.h"
#include "base/task.h"

namespace ovrin {

class TimeLimitAwaiter {
public:
    TimeLimitAwaiter(EventLoop::Duration limit, Task<void> task) : limit_(limit), task_(std::move(task)) {}
    TimeLimitAwaiter(const TimeLimitAwaiter&) = delete;
    TimeLimitAwaiter& operator=(const TimeLimitAwaiter&) = delete;
    ~TimeLimitAwaiter() {
        if (timer_) suspension_.loop().cancelTimer(*timer_);
    }

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        if (!suspension_.begin(awaiting)) return false;
        const auto wake = [resumer = suspension_.resumer()] { resumer.resume(); };
        timer_ = suspension_.loop().postAfter(limit_, wake);
        running_.emplace(suspension_.loop(), std::move(task_), awaiting.promise().context.stop);
        running_->onDone(wake);
        running_->start();
        return true;
    }
    bool await_resume() {
        suspension_.throwIfCancelled();
        const bool isDone = running_->isDone();
        running_.reset();
        return isDone;
    }

private:
    EventLoop::Duration limit_;
    Task<void> task_;
    Suspension suspension_;
    std::optional<EventLoop::TimerId> timer_;
    std::optional<RunningTask> running_;  // the last member: it uses what the others keep
};

// co_await runWithin(limit, task): whether the task has ended in time. One that has not is destroyed where it waits, as
// it is when the awaiting task is stopped, which throws CancellationError. No other exception may leave the task.
[[nodiscard]] inline TimeLimitAwaiter runWithin(EventLoop::Duration limit, Task<void> task) {
    return {limit, std::move(task)};
}

}  // namespace ovrin
