#include "base/worker_executor.h"

#include <cassert>

namespace ovrin {

class WorkerExecutor::PostedWork final : public Job {
public:
    explicit PostedWork(std::function<void(std::stop_token)> work) : work_(std::move(work)) {}

    void run(const std::stop_token& closing) override { work_(closing); }
    void abandon() override {}

private:
    std::function<void(std::stop_token)> work_;
};

WorkerExecutor::WorkerExecutor(int threadCount) {
    assert(threadCount > 0);
    threads_.reserve(static_cast<std::size_t>(threadCount));
    for (int i = 0; i < threadCount; ++i) threads_.emplace_back([this] { work(); });
}

WorkerExecutor::~WorkerExecutor() {
    std::deque<std::shared_ptr<Job>> forgotten;
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        forgotten.swap(queue_);
    }
    changed_.notify_all();
    stop_.request_stop();
    for (const auto& job : forgotten) job->abandon();
    for (std::thread& thread : threads_) thread.join();
}

void WorkerExecutor::post(std::function<void(std::stop_token)> work) {
    enqueue(std::make_shared<PostedWork>(std::move(work)));
}

void WorkerExecutor::enqueue(std::shared_ptr<Job> job) {
    {
        const std::lock_guard lock(mutex_);
        if (!isClosing_) {
            queue_.push_back(std::move(job));
            changed_.notify_one();
            return;
        }
    }
    job->abandon();
}

void WorkerExecutor::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isClosing_ || !queue_.empty(); });
        if (isClosing_) return;
        std::shared_ptr<Job> job = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        job->run(stop_.get_token());
        job = nullptr;  // before locking: what it holds may post when it goes
        lock.lock();
    }
}

}  // namespace ovrin
