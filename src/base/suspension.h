// The building stones of awaitables: a coroutine that waits (Suspension) and the handle that wakes it (Resumer).
#pragma once

#include <coroutine>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

#include "base/error.h"
#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/task.h"

namespace ovrin {

// Wakes one waiting coroutine on its loop. Copies share the right to do so: the first wake counts. Later ones, and
// those that come after the coroutine has gone on or was destroyed, are ignored and touch nothing, so that a Resumer
// may outlive the loop.
class Resumer {
public:
    Resumer() = default;

    // Any thread. The coroutine goes on from its loop, never inside this call.
    void resume() const {
        if (!state_) return;
        const std::lock_guard lock(state_->mutex);
        EventLoop* const loop = std::exchange(state_->loop, nullptr);
        if (!loop) return;
        loop->post([state = state_] {
            if (const auto handle = std::exchange(state->handle, {})) state->root->resume(handle);
        });
    }

private:
    friend class Suspension;
    struct State {
        State(EventLoop* l, detail::TaskRoot* r, std::coroutine_handle<> h) : loop(l), root(r), handle(h) {}
        std::mutex mutex;
        EventLoop* loop;                 // guarded by the mutex; none when woken or gone
        detail::TaskRoot* root;          // alive as long as handle is set
        std::coroutine_handle<> handle;  // touched on the loop's thread only
    };

    explicit Resumer(std::shared_ptr<State> state) : state_(std::move(state)) {}

    std::shared_ptr<State> state_;
};

// Member of an awaiter: holds the coroutine while it waits and wakes it when it is to be cancelled. Its destruction
// (the coroutine went on, or was destroyed where it waits) makes every Resumer harmless.
class Suspension {
public:
    Suspension() = default;
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;
    ~Suspension() {
        if (!state_) return;
        state_->handle = {};
        const std::lock_guard lock(state_->mutex);
        state_->loop = nullptr;
    }

    // From await_suspend, before anything that may wake. False when a stop has been requested: do not wait then,
    // throwIfCancelled() will throw. When the owner of the task has gone, the wait begins and nothing ends it: the task
    // is destroyed in it.
    template <typename Promise>
    bool begin(std::coroutine_handle<Promise> awaiting) {
        const TaskContext& context = awaiting.promise().context;
        stop_ = context.stop;
        loop_ = context.loop;
        if (context.root->isCancelled()) return true;
        if (stop_.stop_requested()) return false;
        state_ = std::make_shared<Resumer::State>(context.loop, context.root, awaiting);
        onStop_.emplace(stop_, [resumer = resumer()] { resumer.resume(); });
        return true;
    }

    Resumer resumer() const { return Resumer(state_); }
    EventLoop& loop() const { return *loop_; }

    // From await_resume.
    void throwIfCancelled() const {
        if (stop_.stop_requested()) throw CancellationError();
    }

private:
    std::shared_ptr<Resumer::State> state_;
    EventLoop* loop_ = nullptr;
    std::stop_token stop_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

// co_await sleepFor(duration): lets the time pass on the loop's clock. Throws CancellationError at once when stopped.
class SleepAwaiter {
public:
    explicit SleepAwaiter(EventLoop::Duration duration) : duration_(duration) {}
    SleepAwaiter(const SleepAwaiter&) = delete;
    SleepAwaiter& operator=(const SleepAwaiter&) = delete;
    ~SleepAwaiter() {
        if (timer_) suspension_.loop().cancelTimer(*timer_);
    }

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        if (!suspension_.begin(awaiting)) return false;
        timer_ = suspension_.loop().postAfter(duration_, [resumer = suspension_.resumer()] { resumer.resume(); });
        return true;
    }
    void await_resume() const { suspension_.throwIfCancelled(); }

private:
    EventLoop::Duration duration_;
    Suspension suspension_;
    std::optional<EventLoop::TimerId> timer_;
};

inline SleepAwaiter sleepFor(EventLoop::Duration duration) {
    return SleepAwaiter(duration);
}

}  // namespace ovrin
