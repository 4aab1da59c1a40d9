// Waiting for something outside of this process: a window, a name on the bus, a text on the clipboard. The condition is
// looked at again and again until it holds; how long that takes decides nothing but when to give up.
#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "base/error.h"
#include "desktop/pixel_area.h"

namespace ovrin {

inline constexpr std::chrono::seconds defaultPatience{30};

// Returns what the condition gives once that is true: true itself, or an optional or pointer with a value. what
// completes the sentence "waited in vain for ..." of the Error that is thrown when the patience is over.
template <typename Condition>
auto waitFor(const std::string& what, Condition condition, std::chrono::milliseconds patience = defaultPatience) {
    constexpr std::chrono::milliseconds interval{5};
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        if (auto result = condition()) return result;
        if (std::chrono::steady_clock::now() > deadline) throw Error("waited in vain for " + what);
        std::this_thread::sleep_for(interval);
    }
}

// Has the user drag from there down and to the right until the condition holds. Whoever moves windows takes over at
// some moment, and follows what comes then.
template <typename User, typename Condition>
void dragUntil(User& user, PixelSpot from, const std::string& what, Condition isReached) {
    user.moveTo(from);
    user.press();
    int step = 0;
    waitFor(what, [&] {
        step = step % 100 + 10;
        user.moveTo({.x = from.x + step, .y = from.y + step});
        return isReached();
    });
    user.release();
}

}  // namespace ovrin
