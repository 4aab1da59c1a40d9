// The pending timers of a loop, ordered by due time and then by age. Not thread-safe: the loop guards it.
//
// A timer that falls due leaves the order but keeps its work until it is taken, so that it can still be cancelled while
// it stands in line behind other work of the loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/event_loop.h"

namespace ovrin {

class TimerQueue {
public:
    // The due time of a delay; a delay beyond the end of the clock never falls due.
    static EventLoop::TimePoint dueAfter(EventLoop::TimePoint now, EventLoop::Duration delay) {
        const bool isBeyond = delay > EventLoop::Duration::zero() && now > EventLoop::TimePoint::max() - delay;
        return isBeyond ? EventLoop::TimePoint::max() : now + delay;
    }

    EventLoop::TimerId add(EventLoop::TimePoint due, EventLoop::Work work) {
        const auto id = EventLoop::TimerId{++lastId_};
        order_.emplace(due, id);
        timers_.emplace(id, Timer{due, std::move(work)});
        return id;
    }

    // Gives the work back, if there still was any: the loop destroys it outside its lock, because what the work holds
    // may post or cancel when it goes.
    std::optional<EventLoop::Work> cancel(EventLoop::TimerId id) { return take(id); }

    std::optional<EventLoop::TimePoint> nextDue() const {
        if (order_.empty()) return std::nullopt;
        return order_.begin()->first;
    }

    // Takes the oldest timer that is due at the given time out of the order.
    std::optional<EventLoop::TimerId> popDue(EventLoop::TimePoint now) {
        if (order_.empty() || order_.begin()->first > now) return std::nullopt;
        const EventLoop::TimerId id = order_.begin()->second;
        order_.erase(order_.begin());
        return id;
    }

    // Takes out the work of a timer; none when it was taken or cancelled before.
    std::optional<EventLoop::Work> take(EventLoop::TimerId id) {
        const auto found = timers_.find(id);
        if (found == timers_.end()) return std::nullopt;
        std::optional<EventLoop::Work> work(std::move(found->second.work));
        order_.erase({found->second.due, id});
        timers_.erase(found);
        return work;
    }

    // Takes out the work of the oldest timer that is due at the given time.
    std::optional<EventLoop::Work> takeDue(EventLoop::TimePoint now) {
        const std::optional<EventLoop::TimerId> id = popDue(now);
        return id ? take(*id) : std::nullopt;
    }

    // Takes out the work of all timers, in no order.
    std::vector<EventLoop::Work> takeAll() {
        std::vector<EventLoop::Work> all;
        all.reserve(timers_.size());
        for (auto& [id, timer] : timers_) all.push_back(std::move(timer.work));
        timers_.clear();
        order_.clear();
        return all;
    }

private:
    struct Timer {
        EventLoop::TimePoint due;
        EventLoop::Work work;
    };

    std::set<std::pair<EventLoop::TimePoint, EventLoop::TimerId>> order_;
    std::unordered_map<EventLoop::TimerId, Timer> timers_;
    std::uint64_t lastId_ = 0;
};

}  // namespace ovrin
