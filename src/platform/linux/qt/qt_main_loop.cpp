#include "platform/linux/qt/qt_main_loop.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include "base/timer_queue.h"

namespace ovrin {

namespace {

// Posted work gives way to input and painting after this long, so that a burst never stalls the windows.
constexpr std::chrono::milliseconds timeSlice{6};

// Qt's timers count whole milliseconds: round up, never fire early.
int wholeMilliseconds(EventLoop::Duration delay) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    return static_cast<int>(std::clamp<decltype(milliseconds)>(milliseconds, 0, 1'000'000'000));
}

}  // namespace

class QtMainLoop::Receiver final : public QObject {
public:
    void post(Work work) {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
        wake();
    }

    TimerId postAfter(Duration delay, Work work) {
        const std::lock_guard lock(mutex_);
        const TimerId id = timers_.add(TimerQueue::dueAfter(std::chrono::steady_clock::now(), delay), std::move(work));
        wake();  // the timer of the toolkit can only be set on its own thread
        return id;
    }

    void cancelTimer(TimerId timer) {
        std::optional<Work> dropped;  // destroyed after the lock is gone: what it holds may post
        const std::lock_guard lock(mutex_);
        dropped = timers_.cancel(timer);
    }

    void discardPosted() {
        std::deque<Work> dropped;  // destroyed after the lock is gone: what it holds may post
        const std::lock_guard lock(mutex_);
        dropped.swap(queue_);
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        runPosted();
        return true;
    }

    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() == timer_.timerId()) runPosted();
    }

private:
    void wake() {
        if (isWoken_) return;
        isWoken_ = true;
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    std::optional<Work> takeNext() {
        const std::lock_guard lock(mutex_);
        while (const auto due = timers_.popDue(std::chrono::steady_clock::now())) {
            queue_.emplace_back([this, id = *due] { runTimer(id); });
        }
        if (queue_.empty()) return std::nullopt;
        std::optional<Work> next(std::move(queue_.front()));
        queue_.pop_front();
        return next;
    }

    void runTimer(TimerId timer) {
        std::optional<Work> work;
        {
            const std::lock_guard lock(mutex_);
            work = timers_.take(timer);
        }
        if (work) (*work)();
    }

    void runPosted() {
        {
            const std::lock_guard lock(mutex_);
            isWoken_ = false;
        }
        const auto end = std::chrono::steady_clock::now() + timeSlice;
        while (const auto work = takeNext()) {
            perform(*work);
            if (std::chrono::steady_clock::now() >= end) break;
        }
        scheduleNext();
    }

    void scheduleNext() {
        const std::lock_guard lock(mutex_);
        if (!queue_.empty()) wake();
        const std::optional<TimePoint> due = timers_.nextDue();
        if (due) {
            timer_.start(wholeMilliseconds(*due - std::chrono::steady_clock::now()), Qt::PreciseTimer, this);
        } else {
            timer_.stop();
        }
    }

    std::mutex mutex_;
    std::deque<Work> queue_;
    TimerQueue timers_;
    bool isWoken_ = false;
    QBasicTimer timer_;
};

QtMainLoop::QtMainLoop() : receiver_(std::make_unique<Receiver>()) {}

QtMainLoop::~QtMainLoop() = default;

void QtMainLoop::post(Work work) {
    receiver_->post(std::move(work));
}

EventLoop::TimerId QtMainLoop::postAfter(Duration delay, Work work) {
    return receiver_->postAfter(delay, std::move(work));
}

void QtMainLoop::cancelTimer(TimerId timer) {
    receiver_->cancelTimer(timer);
}

EventLoop::TimePoint QtMainLoop::now() const {
    return std::chrono::steady_clock::now();
}

bool QtMainLoop::isCurrent() const {
    return QThread::currentThread() == receiver_->thread();
}

void QtMainLoop::discardPosted() {
    receiver_->discardPosted();
}

}  // namespace ovrin
