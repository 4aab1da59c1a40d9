#include "platform/linux/network/network_loop.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <pthread.h>

namespace ovrin {

namespace {

// How much work runs before the sockets are looked at again, so that work that posts work cannot starve them.
constexpr int workPerTurn = 1'000;

// Failures of the multi interface are exhausted memory or misuse, nothing that a request could report.
void check(CURLMcode code) {
    if (code != CURLM_OK) throw std::runtime_error(curl_multi_strerror(code));
}

class CurlLibrary {
public:
    CurlLibrary() {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) throw std::runtime_error("libcurl does not start");
    }
    CurlLibrary(const CurlLibrary&) = delete;
    CurlLibrary& operator=(const CurlLibrary&) = delete;
    ~CurlLibrary() { curl_global_cleanup(); }
};

// While it exists, threads that are started take no signals of the process. Among them is SIGPIPE, which the TLS
// library raises when it writes to a connection that the other side has closed.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : std::array{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) {
            sigdelset(&blocked, fault);
        }
        pthread_sigmask(SIG_SETMASK, &blocked, &previous_);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }

private:
    sigset_t previous_{};
};

// Rounded up, so that a timer is due when the wait for it ends.
int milliseconds(EventLoop::Duration duration) {
    const auto rounded = std::chrono::ceil<std::chrono::milliseconds>(duration).count();
    return static_cast<int>(std::clamp<decltype(rounded)>(rounded, 0, std::numeric_limits<int>::max()));
}

}  // namespace

NetworkLoop::~NetworkLoop() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        if (!thread_.joinable()) return;
        wake();
    }
    thread_.join();
}

void NetworkLoop::post(Work work) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    startThread();
    wake();
}

EventLoop::TimerId NetworkLoop::postAfter(Duration delay, Work work) {
    const std::lock_guard lock(mutex_);
    const TimerId id = timers_.add(TimerQueue::dueAfter(now(), delay), std::move(work));
    startThread();
    wake();
    return id;
}

void NetworkLoop::cancelTimer(TimerId timer) {
    std::optional<Work> dropped;  // goes after the lock
    const std::lock_guard lock(mutex_);
    dropped = timers_.cancel(timer);
}

EventLoop::TimePoint NetworkLoop::now() const {
    return std::chrono::steady_clock::now();
}

bool NetworkLoop::isCurrent() const {
    return std::this_thread::get_id() == threadId_;
}

void NetworkLoop::add(CURL* handle, std::shared_ptr<Transfer> transfer) {
    if (isShuttingDown_) return;
    check(curl_multi_add_handle(multi_, handle));
    transfers_.emplace(handle, std::move(transfer));
}

void NetworkLoop::remove(CURL* handle) {
    const auto node = transfers_.extract(handle);
    if (node) check(curl_multi_remove_handle(multi_, handle));
}

void NetworkLoop::startThread() {
    if (thread_.joinable() || isClosing_) return;
    const SignalsBlocked blocked;
    thread_ = std::thread([this] { run(); });
}

// One wake-up a sleep, however much is posted meanwhile.
void NetworkLoop::wake() {
    if (std::exchange(isPolling_, false)) check(curl_multi_wakeup(multi_));
}

void NetworkLoop::run() {
    threadId_ = std::this_thread::get_id();
    pthread_setname_np(pthread_self(), "network");
    const CurlLibrary library;
    multi_ = curl_multi_init();
    if (!multi_) throw std::bad_alloc();
    // Timers run when the sockets have been looked at since they were due: they take nothing that lies there for
    // silence.
    TimePoint turn = now();
    do {
        runWork(turn);
        turn = now();
        driveTransfers();
    } while (waitForMore());
    shutDown();
    curl_multi_cleanup(multi_);
}

void NetworkLoop::runWork(TimePoint turn) {
    for (int count = 0; count < workPerTurn; ++count) {
        const std::optional<Work> work = takeWork(turn);
        if (!work) return;
        perform(*work);
    }
}

// The queue first, so that what it cancels of the timers that are due does not run any more. Timers that fall due after
// the turn began wait for the next.
std::optional<EventLoop::Work> NetworkLoop::takeWork(TimePoint turn) {
    const std::lock_guard lock(mutex_);
    if (queue_.empty()) return timers_.takeDue(turn);
    std::optional<Work> work(std::move(queue_.front()));
    queue_.pop_front();
    return work;
}

void NetworkLoop::driveTransfers() {
    if (transfers_.empty()) return;
    int running = 0;
    check(curl_multi_perform(multi_, &running));
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        CURL* const handle = message->easy_handle;
        const CURLcode result = message->data.result;
        const auto node = transfers_.extract(handle);
        check(curl_multi_remove_handle(multi_, handle));
        node.mapped()->didEnd(result);
    }
}

// Sleeps until a socket, a timer or new work needs the thread; false when the loop is to end.
bool NetworkLoop::waitForMore() {
    int timeout = std::numeric_limits<int>::max();
    {
        const std::lock_guard lock(mutex_);
        if (isClosing_) return false;
        if (!queue_.empty()) return true;
        if (const auto due = timers_.nextDue()) timeout = milliseconds(*due - now());
        isPolling_ = true;
    }
    check(curl_multi_poll(multi_, nullptr, 0, timeout, nullptr));
    const std::lock_guard lock(mutex_);
    isPolling_ = false;
    return true;
}

// The consumers of dropped transfers see a CancellationError; those that live on this loop come to their end here.
void NetworkLoop::shutDown() {
    isShuttingDown_ = true;
    runWork(now());
    while (!transfers_.empty()) remove(transfers_.begin()->first);
    std::vector<Work> forgotten;
    {
        const std::lock_guard lock(mutex_);
        forgotten = timers_.takeAll();
    }
    forgotten.clear();
    while (hasWork()) runWork(now());
}

bool NetworkLoop::hasWork() const {
    const std::lock_guard lock(mutex_);
    return !queue_.empty();
}

}  // namespace ovrin
