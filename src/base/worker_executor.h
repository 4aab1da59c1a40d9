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

#include "base/error.h"
#include "base/suspension.h"

namespace ovrin {

class WorkerExecutor {
public:
    // At least one thread.
    explicit WorkerExecutor(int threadCount);
    WorkerExecutor(const WorkerExecutor&) = delete;
    WorkerExecutor& operator=(const WorkerExecutor&) = delete;
    // Asks running work to stop, forgets what has not begun, and waits for the threads. Who still waits for work that
    // is forgotten goes on with CancellationError.
    ~WorkerExecutor();

    // co_await worker.run([](std::stop_token stop) { ... }): runs the function on a thread of the executor and gives
    // its result or exception on the awaiting loop. (A lambda that captures values: see task.h.) When the awaiting task
    // is stopped it goes on at once with CancellationError; the function's token is stopped then, and its result thrown
    // away. A function that has run is destroyed on its thread, before the result is given.
    template <typename Function>
    auto run(Function function) {
        return Awaiter<Function>(*this, std::move(function));
    }

    // Fire and forget, in order; an exception that leaves the work is a programming error and ends the program. Any
    // thread; work may post more.
    void post(std::function<void(std::stop_token)> work);

private:
    // Something that waits for its turn on a thread: one of the two is called, once.
    class Job {
    public:
        Job() = default;
        Job(const Job&) = delete;
        Job& operator=(const Job&) = delete;
        virtual ~Job() = default;
        virtual void run(const std::stop_token& closing) = 0;
        virtual void abandon() = 0;
    };
    class PostedWork;
    template <typename Function>
    class AwaitedCall;
    template <typename Function>
    class Awaiter;

    void enqueue(std::shared_ptr<Job> job);
    void work();

    std::stop_source stop_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Job>> queue_;
    bool isClosing_ = false;
    std::vector<std::thread> threads_;
};

// Shared by the coroutine that waits and the thread that works. The outcome is written before the wake and read after
// it.
template <typename Function>
class WorkerExecutor::AwaitedCall final : public Job {
public:
    using Result = std::invoke_result_t<Function&, std::stop_token>;

    explicit AwaitedCall(Function function) : function_(std::move(function)) {}

    void setWaiter(Resumer waiter) { waiter_ = std::move(waiter); }
    void requestStop() { stop_.request_stop(); }

    void run(const std::stop_token& closing) override {
        const std::stop_callback forward(closing, [this] { stop_.request_stop(); });
        if (stop_.stop_requested()) return abandon();
        try {
            if constexpr (std::is_void_v<Result>) {
                (*function_)(stop_.get_token());
            } else {
                result_.emplace((*function_)(stop_.get_token()));
            }
        } catch (...) {
            failure_ = std::current_exception();
        }
        function_.reset();
        waiter_.resume();
    }

    void abandon() override {
        failure_ = std::make_exception_ptr(CancellationError());
        waiter_.resume();
    }

    Result takeResult() {
        if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
        if constexpr (!std::is_void_v<Result>) return std::move(*result_);
    }

private:
    std::optional<Function> function_;
    Resumer waiter_;
    std::stop_source stop_;
    std::optional<std::conditional_t<std::is_void_v<Result>, bool, Result>> result_;
    std::exception_ptr failure_;
};

template <typename Function>
class WorkerExecutor::Awaiter {
public:
    Awaiter(WorkerExecutor& executor, Function function)
        : executor_(executor), call_(std::make_shared<AwaitedCall<Function>>(std::move(function))) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() { call_->requestStop(); }

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> awaiting) {
        if (!suspension_.begin(awaiting)) return false;
        call_->setWaiter(suspension_.resumer());
        executor_.enqueue(call_);
        return true;
    }
    typename AwaitedCall<Function>::Result await_resume() {
        suspension_.throwIfCancelled();
        return call_->takeResult();
    }

private:
    WorkerExecutor& executor_;
    std::shared_ptr<AwaitedCall<Function>> call_;
    Suspension suspension_;
};

}  // namespace ovrin
