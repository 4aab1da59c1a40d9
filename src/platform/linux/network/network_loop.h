// The event loop of the network: one thread that runs posted work and drives the transfers of one curl multi handle.
//
// The thread starts with the first work and sleeps without any periodic wake-up while nothing happens. Transfers share
// the loop's connections, so that a second request to a host finds the first one's still open.
#pragma once

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>

#include <curl/curl.h>

#include "base/event_loop.h"
#include "base/timer_queue.h"

namespace ovrin {

class NetworkLoop final : public EventLoop {
public:
    class Transfer {
    public:
        virtual ~Transfer() = default;
        // The transfer has ended and is out of the loop. Called on the loop's thread, never inside a callback of curl.
        virtual void didEnd(CURLcode result) = 0;
    };

    NetworkLoop() = default;
    NetworkLoop(const NetworkLoop&) = delete;
    NetworkLoop& operator=(const NetworkLoop&) = delete;
    // Drops the transfers, runs what is posted until nothing is left, and ends the thread. Timers that are not due are
    // forgotten. Other threads must have posted their last work before.
    ~NetworkLoop() override;

    void post(Work work) override;
    TimerId postAfter(Duration delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    TimePoint now() const override;
    bool isCurrent() const override;

    // Drives the transfer of an easy handle and keeps it alive until it ends or is removed. While the loop shuts down
    // the transfer is dropped instead. The loop's thread only.
    void add(CURL* handle, std::shared_ptr<Transfer> transfer);

    // Ends a transfer early, without didEnd(), and closes its connection. The loop's thread only.
    void remove(CURL* handle);

private:
    void startThread();
    void wake();
    void run();
    void runWork(TimePoint turn);
    std::optional<Work> takeWork(TimePoint turn);
    void driveTransfers();
    bool waitForMore();
    void shutDown();
    bool hasWork() const;

    mutable std::mutex mutex_;  // guards all up to isClosing_
    std::deque<Work> queue_;
    TimerQueue timers_;
    std::thread thread_;
    bool isPolling_ = false;  // the thread sleeps and must be woken for new work
    bool isClosing_ = false;

    std::atomic<std::thread::id> threadId_;

    // Of the loop's thread; the multi handle exists whenever isPolling_ is set.
    CURLM* multi_ = nullptr;
    std::unordered_map<CURL*, std::shared_ptr<Transfer>> transfers_;
    bool isShuttingDown_ = false;
};

}  // namespace ovrin
