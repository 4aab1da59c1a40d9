// Threads for work that blocks or computes: recognition, capture, disk.
#pragma once

#include <condition_variable>
#include <coroutine>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/suspension.h"

namespace ovrin {

class WorkerExecutor {
public:
    explicit WorkerExecutor(int threadCount);
    WorkerExecutor(const WorkerExecutor&) = delete;
    WorkerExecutor& operator=(const WorkerExecutor&) = delete;
    // Asks running work to stop, forgets what has not begun, and waits for the threads.
    ~WorkerExecutor();

    // co_await worker.run([](std::stop_token stop) { ... }): runs the function on a thread of the executor and gives
    // its result or exception on the awaiting loop. When the awaiting task is stopped it goes on at once with
    // CancellationError; the function's token is stopped then, and its result thrown away.
    template <typename Function>
    auto run(Function function) {
        return Awaiter<Function>(*this, std::move(function));
    }

    // Fire and forget; exceptions are programming errors.
    void post(std::function<void(std::stop_token)> work);

private:
    template <typename Function>
    class Awaiter;

    void work();

    std::stop_source stop_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void(std::stop_token)>> queue_;
    bool isClosing_ = false;
    std::vector<std::thread> threads_;
};

template <typename Function>
class WorkerExecutor::Awaiter {
public:
    using Result = std::invoke_result_t<Function&, std::stop_token>;

    Awaiter(WorkerExecutor& executor, Function function)
        : executor_(executor), job_(std::make_shared<Job>(std::move(function))) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() { job_->stop.request_stop(); }

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        if (!suspension_.begin(awaiting)) return false;
        executor_.post([job = job_, resumer = suspension_.resumer()](const std::stop_token& closing) {
            const std::stop_callback forward(closing, [&job] { job->stop.request_stop(); });
            job->run();
            resumer.resume();
        });
        return true;
    }
    Result await_resume() {
        suspension_.throwIfCancelled();
        if (job_->failure) std::rethrow_exception(job_->failure);
        if constexpr (!std::is_void_v<Result>) return std::move(*job_->result);
    }

private:
    struct Job {
        explicit Job(Function f) : function(std::move(f)) {}
        void run() {
            if (stop.stop_requested()) return;
            try {
                if constexpr (std::is_void_v<Result>) {
                    function(stop.get_token());
                } else {
                    result.emplace(function(stop.get_token()));
                }
            } catch (...) {
                failure = std::current_exception();
            }
        }
        Function function;
        std::stop_source stop;
        std::optional<std::conditional_t<std::is_void_v<Result>, bool, Result>> result;
        std::exception_ptr failure;
    };

    WorkerExecutor& executor_;
    std::shared_ptr<Job> job_;
    Suspension suspension_;
};

}  // namespace ovrin
