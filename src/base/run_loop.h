// An event loop in real time for a thread without a window system: the command line and tests.
#pragma once

#include <exception>
#include <optional>
#include <stop_token>
#include <type_traits>

#include "base/queue_loop.h"
#include "base/running_task.h"
#include "base/task.h"

namespace ovrin {

class RunLoop final : public QueueLoop {
public:
    RunLoop() = default;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;
    ~RunLoop() override { dropWork(); }

    TimePoint now() const override;

    // Runs posted work until quit(). Work that is posted meanwhile is run too.
    void run();

    // Ends run() after the work that runs at the moment. Any thread.
    void quit();

    // Runs the loop until the task is done and gives its result or exception. A stop makes the task's waits throw
    // CancellationError. A quit() meanwhile does not end it.
    template <typename T>
    T complete(Task<T> task, std::stop_token stop = {}) {
        Outcome<T> outcome;
        RunningTask running(*this, collect(std::move(task), outcome), std::move(stop));
        running.start();
        while (!outcome.isKnown) run();
        if (outcome.failure) std::rethrow_exception(outcome.failure);
        if constexpr (!std::is_void_v<T>) return std::move(*outcome.value);
    }

private:
    template <typename T>
    struct Outcome {
        std::optional<std::conditional_t<std::is_void_v<T>, bool, T>> value;
        std::exception_ptr failure;
        bool isKnown = false;
    };

    template <typename T>
    Task<void> collect(Task<T> task, Outcome<T>& outcome) {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(task);
            } else {
                outcome.value.emplace(co_await std::move(task));
            }
        } catch (...) {
            outcome.failure = std::current_exception();
        }
        outcome.isKnown = true;
        quit();
    }

    TimePoint time() const override { return now(); }

    bool quitting_ = false;  // guarded by the mutex
};

}  // namespace ovrin
