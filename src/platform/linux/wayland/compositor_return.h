// The way of a program through the end of its Wayland compositor, which may come back, as KWin does after a crash. The
// window toolkit cannot go on then: the program starts itself anew at once, free of all that hung on the old
// connection, and the new one begins by waiting for the compositor.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "base/environment.h"

namespace ovrin {

class CompositorReturn {
public:
    static constexpr std::chrono::seconds patience{10};

    // Before the program changes its environment and starts threads: what was noted there about earlier ends is read
    // and taken out, the rest is what a new start gets.
    CompositorReturn();

    // Whether this is such a new start.
    bool isAwaited() const { return isAwaited_; }
    // Returns when the compositor answers; false when it does not within the patience.
    bool wait() const;

    // Puts the program in the place of this one, with this argument. Any thread. Returns where that is not possible,
    // and where the compositor has ended so often within a minute that this program may be the reason.
    void startAnew(const char* argument) const;

private:
    using Seconds = std::chrono::seconds;  // of the steady clock, which goes on through a new start

    Environment environment_;
    std::vector<Seconds> ends_;  // of compositors, within the last minute, the earliest first
    bool isAwaited_ = false;
};

}  // namespace ovrin
