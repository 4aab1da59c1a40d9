#include "base/worker_executor.h"

namespace ovrin {

WorkerExecutor::WorkerExecutor(int threadCount) {
    threads_.reserve(static_cast<std::size_t>(threadCount));
    for (int i = 0; i < threadCount; ++i) threads_.emplace_back([this] { work(); });
}

WorkerExecutor::~WorkerExecutor() {
    stop_.request_stop();
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        queue_.clear();
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void WorkerExecutor::post(std::function<void(std::stop_token)> work) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    changed_.notify_one();
}

void WorkerExecutor::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isClosing_ || !queue_.empty(); });
        if (isClosing_) return;
        const auto next = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        next(stop_.get_token());
        lock.lock();
    }
}

}  // namespace ovrin
