#include "app/deferred_writes.h"

#include <algorithm>
#include <utility>

namespace ovrin {

namespace {

using namespace std::chrono_literals;

constexpr auto interval = 1s;
constexpr std::chrono::milliseconds patienceAtTheEnd = 1s;

}  // namespace

DeferredWrites::DeferredWrites(EventLoop& loop, std::vector<Write> writes) : loop_(loop), writes_(std::move(writes)) {}

DeferredWrites::~DeferredWrites() {
    if (timer_) loop_.cancelTimer(*timer_);
    finish();
}

void DeferredWrites::finish() {
    const auto deadline = std::chrono::steady_clock::now() + patienceAtTheEnd;
    for (const Write& write : writes_) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        write(std::max(left, 0ms));
    }
}

std::function<void()> DeferredWrites::note() {
    return [this, &loop = loop_, alive = std::weak_ptr(isAlive_)] {
        loop.post([this, alive] {
            if (!alive.expired()) schedule();
        });
    };
}

void DeferredWrites::schedule() {
    if (timer_) return;
    timer_ = loop_.postAfter(interval, [this] { write(); });
}

void DeferredWrites::write() {
    timer_.reset();
    bool isDone = true;
    for (const Write& write : writes_) isDone = write(patience) && isDone;
    if (!isDone) schedule();
}

}  // namespace ovrin
