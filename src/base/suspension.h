// The building stones of awaitables: a coroutine that waits (Suspension) and the handle that wakes it (Resumer).
#pragma once

#include <coroutine>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "base/error.h"
#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/task.h"

namespace ovrin {

// Wakes one waiting coroutine on its loop. Copies share the right to do so: the first wake counts, later ones and
// those that come after the coroutine has gone are ignored.
class Resumer {
public:
    Resumer() = default;

    // Any thread. The coroutine goes on from its loop, never inside this call.
    void resume() const {
        state_->loop->post([state = state_] {
            if (const auto handle = std::exchange(state->handle, {})) state->root->resume(handle);
        });
    }

private:
    friend class Suspension;
    struct State {
        EventLoop* loop;
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
        if (state_) state_->handle = {};
    }

    // From await_suspend. False when a stop has been requested: do not wait then, throwIfCancelled() will throw.
    template <typename Promise>
    bool begin(std::coroutine_handle<Promise> awaiting) {
        const TaskContext& context = awaiting.promise().context;
        stop_ = context.stop;
        if (stop_.stop_requested()) return false;
        state_ = std::make_shared<Resumer::State>(Resumer::State{context.loop, context.root, awaiting});
        onStop_.emplace(stop_, [resumer = resumer()] { resumer.resume(); });
        return true;
    }

    Resumer resumer() const { return Resumer(state_); }
    EventLoop& loop() const { return *state_->loop; }

    // From await_resume.
    void throwIfCancelled() const {
        if (stop_.stop_requested()) throw CancellationError();
    }

private:
    std::shared_ptr<Resumer::State> state_;
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
