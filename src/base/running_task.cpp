#include "base/running_task.h"

#include <cassert>
#include <exception>
#include <optional>
#include <utility>

#include "base/error.h"

namespace ovrin {

namespace detail {

namespace {

Task<void> endQuietlyWhenCancelled(Task<void> task) {
    try {
        co_await std::move(task);
    } catch (const CancellationError&) {
        // Cancelling is silent.
    }
}

}  // namespace

TaskRoot::TaskRoot(EventLoop& loop, Task<void> task, const std::stop_token& outerStop)
    : task_(endQuietlyWhenCancelled(std::move(task))), outerStop_(outerStop, [this] { stop_.request_stop(); }) {
    task_.handle_.promise().context = {.loop = &loop, .stop = stop_.get_token(), .root = this};
}

void TaskRoot::start() {
    assert(task_ && task_.handle_.promise().context.loop->isCurrent());
    assert(!isStarted_ && "a task starts once");
    isStarted_ = true;
    resume(task_.handle_);
}

void TaskRoot::resume(std::coroutine_handle<> handle) {
    const auto keepAlive = shared_from_this();
    ++depth_;
    handle.resume();
    --depth_;
    settle();
}

void TaskRoot::settle() noexcept {
    if (depth_ > 0 || isDone_) return;
    if (task_ && task_.handle_.done()) {
        isDone_ = true;
        try {
            task_.handle_.promise().takeResult();
        } catch (...) {
            std::terminate();  // a programming error; caught so that the program's last words name it
        }
        task_ = {};
        if (const auto callback = std::exchange(onDone_, {})) callback();
    } else if (isCancelled_) {
        isDone_ = true;
        task_ = {};
    }
}

void TaskRoot::cancel() {
    const auto keepAlive = shared_from_this();
    // Also when the task is done: the clean-up of its locals may be what makes the owner go.
    const auto unwanted = std::exchange(onDone_, {});
    if (isDone_ || isCancelled_) return;
    isCancelled_ = true;
    stop_.request_stop();
    settle();
}

}  // namespace detail

RunningTask::RunningTask(EventLoop& loop, Task<void> task, const std::stop_token& outerStop)
    : root_(std::make_shared<detail::TaskRoot>(loop, std::move(task), outerStop)) {}

void TaskSlot::replace(Task<void> task) {
    cancel();
    running_ = std::make_unique<RunningTask>(loop_, std::move(task));
    running_->start();
}

void TaskSlot::cancel() {
    // Cleared before the old task is destroyed, so that its clean-up finds the slot empty.
    const auto old = std::exchange(running_, nullptr);
}

void TaskGroup::cancelAll() {
    // One at a time and out of the list, because the clean-up of a task may use the group.
    while (!tasks_.empty()) {
        std::list<RunningTask> one;
        one.splice(one.begin(), tasks_, tasks_.begin());
    }
}

void TaskGroup::start(Task<void> task) {
    const auto entry = tasks_.emplace(tasks_.end(), loop_, std::move(task));
    entry->onDone([this, entry] { tasks_.erase(entry); });
    entry->start();
}

namespace {

// Keeps a detached task alive and ends it on its loop when the stop comes.
class DetachedTask : public std::enable_shared_from_this<DetachedTask> {
public:
    DetachedTask(EventLoop& loop, Task<void> task) : loop_(loop), running_(std::in_place, loop, std::move(task)) {}

    void start(const std::stop_token& stop) {
        if (stop.stop_requested()) return running_.reset();
        running_->onDone([self = shared_from_this()] { self->finish(); });
        onStop_.emplace(stop, [this, weak = weak_from_this()] {
            loop_.post([weak] {
                if (const auto self = weak.lock()) self->finish();
            });
        });
        running_->start();
    }

private:
    void finish() {
        const auto keepAlive = shared_from_this();
        onStop_.reset();
        running_.reset();
    }

    EventLoop& loop_;
    std::optional<RunningTask> running_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

}  // namespace

void startDetached(EventLoop& loop, Task<void> task, const std::stop_token& stop) {
    auto detached = std::make_shared<DetachedTask>(loop, std::move(task));
    loop.post([detached = std::move(detached), stop] { detached->start(stop); });
}

}  // namespace ovrin
