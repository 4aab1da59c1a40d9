// RunningTask: the owner of a task that runs. TaskSlot, TaskGroup: the two ways objects keep them.
//
// Cancelling asks the task's waits and helpers to stop and destroys the task where it waits, so that a cancelled task
// changes no state and shows no message. A task that cancels its own owner runs on to its next wait and is destroyed
// there: no exception reaches it, so none of its handlers runs for an owner that is gone.
// All of them belong to the thread of their loop.
#pragma once

#include <coroutine>
#include <functional>
#include <list>
#include <memory>
#include <stop_token>

#include "base/event_loop.h"
#include "base/task.h"

namespace ovrin {

namespace detail {

// The state of a started task, shared by its owner and by whatever will resume it.
class TaskRoot : public std::enable_shared_from_this<TaskRoot> {
public:
    TaskRoot(EventLoop& loop, Task<void> task, const std::stop_token& outerStop);

    void start();
    // Runs the coroutine until it waits again; then settles what happened meanwhile.
    void resume(std::coroutine_handle<> handle);
    void cancel();
    bool isDone() const { return isDone_; }
    // Set when the owner has gone: the coroutine must not run on after its next wait.
    bool isCancelled() const { return isCancelled_; }
    void setOnDone(std::function<void()> callback) { onDone_ = std::move(callback); }

private:
    void settle() noexcept;

    Task<void> task_;
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> outerStop_;
    std::function<void()> onDone_;
    int depth_ = 0;  // how many resume() calls are on the stack
    bool isStarted_ = false;
    bool isCancelled_ = false;
    bool isDone_ = false;
};

}  // namespace detail

class RunningTask {
public:
    // A stop of outerStop makes the task's waits throw CancellationError; it does not destroy the task.
    RunningTask(EventLoop& loop, Task<void> task, const std::stop_token& outerStop = {});
    RunningTask(const RunningTask&) = delete;
    RunningTask& operator=(const RunningTask&) = delete;
    ~RunningTask() { root_->cancel(); }

    // Runs the task up to its first wait. Call once. CancellationError may end a task; any other exception that escapes
    // it is a programming error and terminates the program.
    void start() { root_->start(); }

    bool isDone() const { return root_->isDone(); }

    // Called once on the loop when the task has ended by itself (not when it was cancelled). Set it before start().
    void onDone(std::function<void()> callback) { root_->setOnDone(std::move(callback)); }

private:
    std::shared_ptr<detail::TaskRoot> root_;
};

// The one slot for "the running task" of an object: starting new work cancels what was there.
class TaskSlot {
public:
    explicit TaskSlot(EventLoop& loop) : loop_(loop) {}

    void replace(Task<void> task);
    void cancel();
    bool isRunning() const { return running_ && !running_->isDone(); }

private:
    EventLoop& loop_;
    std::unique_ptr<RunningTask> running_;
};

// Any number of tasks that live at most as long as their owner.
class TaskGroup {
public:
    explicit TaskGroup(EventLoop& loop) : loop_(loop) {}
    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;
    ~TaskGroup() { cancelAll(); }

    void start(Task<void> task);
    void cancelAll();
    bool isEmpty() const { return tasks_.empty(); }

private:
    EventLoop& loop_;
    std::list<RunningTask> tasks_;
};

// Runs a task on a loop from any thread, owned by nobody: it lives until it ends or the stop destroys it on its loop.
// The loop has to exist until then. It may be gone once the task has ended, and a stop that comes later is ignored.
void startDetached(EventLoop& loop, Task<void> task, const std::stop_token& stop);

}  // namespace ovrin
