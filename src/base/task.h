// Task<T>: work that takes time, written as a straight-line coroutine.
//
// A task starts when it is awaited (or handed to a RunningTask, TaskSlot or TaskGroup), runs on one loop, and gives one
// result or exception to its one awaiter. What it awaits inherits its loop and its stop token. A task that is
// dropped before its end is destroyed where it waits: its locals are cleaned up and nothing of it runs again.
//
// Write coroutines with parameters by value, and name what is awaited instead of awaiting inside a condition. GCC 12
// destroys two times what a temporary aggregate inside a co_await expression holds: a lambda with captures other than
// references, or arguments in braces ({.text = text}), must get a name first and be moved into the call.
#pragma once

#include <cassert>
#include <coroutine>
#include <exception>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

#include "base/event_loop.h"

namespace ovrin {

namespace detail {
class TaskRoot;
}

// What a coroutine inherits from the one that awaits it.
struct TaskContext {
    EventLoop* loop = nullptr;
    std::stop_token stop;
    detail::TaskRoot* root = nullptr;  // the started task that this coroutine is part of
};

template <typename T>
class Task;

namespace detail {

class TaskPromiseBase {
public:
    TaskContext context;
    std::coroutine_handle<> continuation;
    // True while the awaiter is still inside await_suspend: it then looks for the end itself instead of being resumed.
    // This keeps the stack flat when a loop awaits tasks that end at once.
    bool isStarting = false;

    std::suspend_always initial_suspend() noexcept { return {}; }
    void unhandled_exception() noexcept { failure_ = std::current_exception(); }

    struct FinalAwaiter {
        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        void await_suspend(std::coroutine_handle<Promise> finished) const noexcept {
            const TaskPromiseBase& promise = finished.promise();
            if (promise.isStarting || !promise.continuation) return;
            promise.continuation.resume();  // may destroy this frame: nothing follows
        }
        void await_resume() const noexcept {}
    };
    FinalAwaiter final_suspend() const noexcept { return {}; }

protected:
    void rethrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    std::exception_ptr failure_;
};

template <typename T>
class TaskPromise : public TaskPromiseBase {
public:
    Task<T> get_return_object();
    template <typename Value = T>
    requires std::is_constructible_v<T, Value&&>
    void return_value(Value&& value) { value_.emplace(std::forward<Value>(value)); }
    T takeResult() {
        rethrowFailure();
        return std::move(*value_);
    }

private:
    std::optional<T> value_;
};

template <>
class TaskPromise<void> : public TaskPromiseBase {
public:
    Task<void> get_return_object();
    void return_void() const noexcept {}
    void takeResult() const { rethrowFailure(); }
};

}  // namespace detail

template <typename T = void>
class [[nodiscard]] Task {
public:
    using promise_type = detail::TaskPromise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    Task() = default;
    explicit Task(Handle handle) : handle_(handle) {}
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        Task old(std::move(*this));
        handle_ = std::exchange(other.handle_, {});
        return *this;
    }
    ~Task() {
        if (handle_) handle_.destroy();
    }

    class Awaiter {
    public:
        explicit Awaiter(Handle handle) : handle_(handle) {}
        Awaiter(const Awaiter&) = delete;
        Awaiter& operator=(const Awaiter&) = delete;
        ~Awaiter() {
            if (handle_) handle_.destroy();
        }

        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        bool await_suspend(std::coroutine_handle<Promise> awaiting) {
            promise_type& promise = handle_.promise();
            promise.context = awaiting.promise().context;
            promise.continuation = awaiting;
            promise.isStarting = true;
            handle_.resume();
            promise.isStarting = false;
            return !handle_.done();
        }
        T await_resume() { return handle_.promise().takeResult(); }

    private:
        Handle handle_;
    };

    // Awaiting consumes the task: co_await std::move(task).
    Awaiter operator co_await() && {
        assert(handle_ && "an empty task cannot be awaited");
        return Awaiter(std::exchange(handle_, {}));
    }

    explicit operator bool() const { return static_cast<bool>(handle_); }

private:
    friend class detail::TaskRoot;
    Handle handle_;
};

namespace detail {

template <typename T>
Task<T> TaskPromise<T>::get_return_object() {
    return Task<T>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

inline Task<void> TaskPromise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

}  // namespace detail

// A task that gives the value at once.
template <typename T>
Task<T> finished(T value) {
    co_return value;
}

// co_await currentContext(): the loop and stop token of the running coroutine; never suspends.
struct CurrentContext {
    TaskContext context;
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        context = awaiting.promise().context;
        return false;
    }
    TaskContext await_resume() { return std::move(context); }
};
inline CurrentContext currentContext() {
    return {};
}

}  // namespace ovrin
