// AsyncStream<T>: an unbounded sequence of values from a producer on one loop or thread to one consumer on another.
//
// Values arrive in the order they were pushed; the stream ends normally or with an exception, after all values pushed
// before. Dropping the stream tells the producer through its stop token, throws away what is still queued and ends a
// wait for the next value with CancellationError. Values may be destroyed on either thread.
#pragma once

#include <cassert>
#include <coroutine>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

#include "base/error.h"
#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/suspension.h"
#include "base/task.h"

namespace ovrin {

template <typename T>
class AsyncStream;

namespace detail {

template <typename T>
struct StreamState {
    std::mutex mutex;
    std::deque<T> queue;
    bool isFinished = false;
    std::exception_ptr failure;
    std::optional<Resumer> waiting;
    std::stop_source dropped;

    // The first end counts.
    void end(std::exception_ptr reason) {
        std::optional<Resumer> waiter;
        {
            const std::lock_guard lock(mutex);
            if (isFinished) return;
            isFinished = true;
            failure = std::move(reason);
            waiter = std::exchange(waiting, std::nullopt);
        }
        if (waiter) waiter->resume();
    }
};

}  // namespace detail

// The producer's end. Any thread, but one at a time.
template <typename T>
class StreamWriter {
public:
    StreamWriter(StreamWriter&&) noexcept = default;
    StreamWriter& operator=(StreamWriter&&) = delete;
    // A writer that goes away unfinished (its task was destroyed) ends the stream with CancellationError.
    ~StreamWriter() {
        if (state_) end(std::make_exception_ptr(CancellationError()));
    }

    // Ignored after the end and after the stream was dropped.
    void push(T value) {
        assert(state_);
        std::optional<Resumer> waiter;
        {
            const std::lock_guard lock(state_->mutex);
            if (state_->isFinished) return;
            state_->queue.push_back(std::move(value));
            waiter = std::exchange(state_->waiting, std::nullopt);
        }
        if (waiter) waiter->resume();
    }

    void finish() { end(nullptr); }
    void fail(std::exception_ptr failure) { end(std::move(failure)); }

    // Stopped when the consumer has dropped the stream.
    std::stop_token stopToken() const { return state_->dropped.get_token(); }

private:
    template <typename U>
    friend std::pair<AsyncStream<U>, StreamWriter<U>> makeStream();
    explicit StreamWriter(std::shared_ptr<detail::StreamState<T>> state) : state_(std::move(state)) {}

    void end(std::exception_ptr failure) {
        assert(state_);
        state_->end(std::move(failure));
    }

    std::shared_ptr<detail::StreamState<T>> state_;
};

// The consumer's end; used on one loop.
template <typename T>
class [[nodiscard]] AsyncStream {
public:
    AsyncStream() = default;
    AsyncStream(AsyncStream&&) noexcept = default;
    AsyncStream& operator=(AsyncStream&& other) noexcept {
        if (this != &other) {
            drop();
            state_ = std::move(other.state_);
        }
        return *this;
    }
    ~AsyncStream() { drop(); }

    class NextAwaiter {
    public:
        explicit NextAwaiter(std::shared_ptr<detail::StreamState<T>> state) : state_(std::move(state)) {}
        NextAwaiter(const NextAwaiter&) = delete;
        NextAwaiter& operator=(const NextAwaiter&) = delete;

        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        bool await_suspend(std::coroutine_handle<Promise> awaiting) {
            const std::lock_guard lock(state_->mutex);
            if (awaiting.promise().context.stop.stop_requested()) return suspension_.begin(awaiting);
            if (!state_->queue.empty() || state_->isFinished) return false;
            if (!suspension_.begin(awaiting)) return false;
            state_->waiting = suspension_.resumer();
            return true;
        }
        std::optional<T> await_resume() {
            suspension_.throwIfCancelled();
            const std::lock_guard lock(state_->mutex);
            if (!state_->queue.empty()) {
                std::optional<T> value(std::move(state_->queue.front()));
                state_->queue.pop_front();
                return value;
            }
            if (state_->failure) std::rethrow_exception(state_->failure);
            return std::nullopt;
        }

    private:
        std::shared_ptr<detail::StreamState<T>> state_;
        Suspension suspension_;
    };

    // The next value; none after a normal end; throws what the producer failed with, and CancellationError when the
    // awaiting task is stopped (the value that had arrived then stays in the stream). After the end it keeps giving the
    // same answer. One wait at a time; the stream may be moved or dropped meanwhile.
    NextAwaiter next() {
        assert(state_ && "an empty stream has no next value");
        return NextAwaiter(state_);
    }

private:
    template <typename U>
    friend std::pair<AsyncStream<U>, StreamWriter<U>> makeStream();
    explicit AsyncStream(std::shared_ptr<detail::StreamState<T>> state) : state_(std::move(state)) {}

    void drop() {
        if (!state_) return;
        // Cleared before anything that may run code of others.
        const auto state = std::exchange(state_, nullptr);
        state->end(std::make_exception_ptr(CancellationError()));
        std::deque<T> unread;
        // What was thrown on this thread goes on this thread too, not with the producer's hold on the state.
        std::exception_ptr thrown = std::make_exception_ptr(CancellationError());
        {
            const std::lock_guard lock(state->mutex);
            unread.swap(state->queue);
            if (state->failure) thrown.swap(state->failure);
        }
        state->dropped.request_stop();
    }

    std::shared_ptr<detail::StreamState<T>> state_;
};

template <typename T>
std::pair<AsyncStream<T>, StreamWriter<T>> makeStream() {
    auto state = std::make_shared<detail::StreamState<T>>();
    return {AsyncStream<T>(state), StreamWriter<T>(state)};
}

namespace detail {

template <typename T>
Task<void> runProducer(std::function<Task<void>(StreamWriter<T>&)> body, StreamWriter<T> writer) {
    std::exception_ptr failure;
    try {
        co_await body(writer);
    } catch (...) {
        failure = std::current_exception();
    }
    // Outside the handler, which would keep a hold on what the consumer's thread throws.
    if (failure) {
        writer.fail(std::move(failure));
    } else {
        writer.finish();
    }
}

}  // namespace detail

// A stream whose values come from a task on the given loop. The task starts at once (from any thread), ends the stream
// by ending, and is destroyed on its loop when the stream is dropped. The loop has to exist until one of these.
template <typename T>
AsyncStream<T> streamFrom(EventLoop& loop, std::function<Task<void>(StreamWriter<T>&)> body) {
    auto [stream, writer] = makeStream<T>();
    const std::stop_token dropped = writer.stopToken();
    startDetached(loop, detail::runProducer<T>(std::move(body), std::move(writer)), dropped);
    return std::move(stream);
}

}  // namespace ovrin
