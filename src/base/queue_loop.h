// What the loops of one thread share: posted work in order, timers that join it when they fall due, and the end of
// both.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "base/event_loop.h"
#include "base/timer_queue.h"

namespace ovrin {

class QueueLoop : public EventLoop {
public:
    QueueLoop(const QueueLoop&) = delete;
    QueueLoop& operator=(const QueueLoop&) = delete;
    ~QueueLoop() override = default;

    void post(Work work) override;
    TimerId postAfter(Duration delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    bool isCurrent() const override;

protected:
    // The loop belongs to the thread that makes it.
    QueueLoop();

    // Destroys what has not run. The last act of the loop that derives from this one: what the work holds may still
    // post to it.
    void dropWork();

    // The loop's clock; called with the lock held.
    virtual TimePoint time() const = 0;

    // The next work that is to run; none when nothing is posted or due. With the lock held.
    std::optional<Work> takeNext();
    std::optional<TimePoint> nextDue() const { return timers_.nextDue(); }  // with the lock held
    bool hasWork() const;                                                   // with the lock held

    mutable std::mutex mutex_;
    std::condition_variable changed_;  // there is more work, or an earlier timer

private:
    void runTimer(TimerId timer);

    const std::thread::id thread_;
    std::deque<Work> queue_;  // guarded by the mutex, like the timers
    TimerQueue timers_;
};

}  // namespace ovrin
