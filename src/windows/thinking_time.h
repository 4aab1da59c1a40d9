// How long a model has been thinking before it answers, for a quiet line beside what says that an answer is on its way.
#pragma once

#include <optional>
#include <string>

#include "base/event_loop.h"
#include "base/published.h"

namespace ovrin {

// Main thread.
class ThinkingTime {
public:
    // The loop outlives it.
    explicit ThinkingTime(EventLoop& loop) : loop_(loop) {}
    ThinkingTime(const ThinkingTime&) = delete;
    ThinkingTime& operator=(const ThinkingTime&) = delete;
    ~ThinkingTime() { end(); }

    // 思考中 12 秒 while the model thinks, else empty.
    const Published<std::string>& words() const { return words_; }

    void begin();
    void end();

    // Ends with the reading of an answer, also where that is cancelled.
    class Reading {
    public:
        explicit Reading(ThinkingTime& thinking) : thinking_(thinking) {}
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
        ~Reading() { thinking_.end(); }

    private:
        ThinkingTime& thinking_;
    };

private:
    void tick();

    EventLoop& loop_;
    EventLoop::TimePoint beginning_;
    std::optional<EventLoop::TimerId> timer_;
    Published<std::string> words_;
};

}  // namespace ovrin
