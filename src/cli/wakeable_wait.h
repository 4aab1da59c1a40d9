// Waiting for a file descriptor in a way that a stop request ends.
#pragma once

#include <functional>
#include <stop_token>

namespace ovrin::cli {

// Throws Error where it is made when the system has no descriptors left. One thread waits at a time.
class WakeableWait {
public:
    explicit WakeableWait(std::stop_token stop);
    WakeableWait(const WakeableWait&) = delete;
    WakeableWait& operator=(const WakeableWait&) = delete;

    // Returns when there is something to read, or its end or a failure to meet, or when a stop is requested.
    void untilReadable(int descriptor) const;

    // The same for the other end's going away: true when it has gone, false when a stop was requested.
    bool untilClosed(int descriptor) const;

private:
    // What happened to the descriptor; 0 when a stop was requested.
    short waitFor(int descriptor, short events) const;

    // Readable once it was set.
    class Event {
    public:
        Event();
        Event(const Event&) = delete;
        Event& operator=(const Event&) = delete;
        ~Event();

        void set() const;
        int descriptor() const { return descriptor_; }

    private:
        int descriptor_;
    };

    Event wake_;  // outlives the callback
    std::stop_callback<std::function<void()>> onStop_;
};

}  // namespace ovrin::cli
