// The pending timers of a loop, ordered by due time and then by age. Not thread-safe: the loop guards it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/event_loop.h"

namespace ovrin {

class TimerQueue {
public:
    EventLoop::TimerId add(EventLoop::TimePoint due, EventLoop::Work work) {
        const auto id = EventLoop::TimerId{++lastId_};
        const Key key{due, lastId_};
        timers_.emplace(key, std::move(work));
        keys_.emplace(id, key);
        return id;
    }

    void cancel(EventLoop::TimerId id) {
        const auto found = keys_.find(id);
        if (found == keys_.end()) return;
        timers_.erase(found->second);
        keys_.erase(found);
    }

    std::optional<EventLoop::TimePoint> nextDue() const {
        if (timers_.empty()) return std::nullopt;
        return timers_.begin()->first.first;
    }

    // Takes out the oldest timer that is due at the given time.
    std::optional<EventLoop::Work> takeDue(EventLoop::TimePoint now) {
        if (timers_.empty() || timers_.begin()->first.first > now) return std::nullopt;
        auto node = timers_.extract(timers_.begin());
        keys_.erase(EventLoop::TimerId{node.key().second});
        return std::move(node.mapped());
    }

private:
    using Key = std::pair<EventLoop::TimePoint, std::uint64_t>;
    std::map<Key, EventLoop::Work> timers_;
    std::unordered_map<EventLoop::TimerId, Key> keys_;
    std::uint64_t lastId_ = 0;
};

}  // namespace ovrin
