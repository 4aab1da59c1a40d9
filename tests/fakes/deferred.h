// The answer of a fake to a call that takes time: given by the test before the call or while it waits.
#pragma once

#include <deque>
#include <exception>
#include <optional>
#include <utility>
#include <variant>

#include "base/async_stream.h"
#include "base/task.h"

namespace ovrin {

template <typename T>
class Deferred {
public:
    // What the call returns. Calls are answered in their order.
    Task<T> result() {
        auto [stream, writer] = makeStream<T>();
        if (ready_.empty()) {
            waiting_.push_back(std::move(writer));
        } else {
            give(writer, std::move(ready_.front()));
            ready_.pop_front();
        }
        return next(std::move(stream));
    }

    void succeed(T value) { answer(std::move(value)); }
    void fail(std::exception_ptr failure) { answer(std::move(failure)); }
    template <typename Failure>
    void fail(Failure failure) {
        answer(std::make_exception_ptr(std::move(failure)));
    }

    bool isAwaited() const { return !waiting_.empty(); }

private:
    using Answer = std::variant<T, std::exception_ptr>;

    void answer(Answer answer) {
        if (waiting_.empty()) return ready_.push_back(std::move(answer));
        auto writer = std::move(waiting_.front());
        waiting_.pop_front();
        give(writer, std::move(answer));
    }

    static void give(StreamWriter<T>& writer, Answer answer) {
        if (T* value = std::get_if<T>(&answer)) {
            writer.push(std::move(*value));
            writer.finish();
        } else {
            writer.fail(std::get<std::exception_ptr>(std::move(answer)));
        }
    }

    static Task<T> next(AsyncStream<T> stream) {
        std::optional<T> value = co_await stream.next();
        co_return std::move(*value);
    }

    std::deque<Answer> ready_;
    std::deque<StreamWriter<T>> waiting_;
};

}  // namespace ovrin
