// An event loop in real time for a thread without a window system: the command line and tests.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <type_traits>

#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/task.h"
#include "base/timer_queue.h"

namespace ovrin {

class RunLoop final : public EventLoop {
public:
    // The loop belongs to the thread that makes it.
    RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;
    ~RunLoop() override;

    void post(Work work) override;
    TimerId postAfter(Duration delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    TimePoint now() const override;
    bool isCurrent() const override;

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

    void runTimer(TimerId timer);

    const std::thread::id thread_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> queue_;
    TimerQueue timers_;
    bool quitting_ = false;
};

}  // namespace ovrin
