// The end of the display server. The window toolkit meets it, over X11 and Wayland alike, by a warning of its own and
// an end of the program on the spot, in which nothing is destroyed.
#pragma once

#include <functional>

namespace ovrin {

class LostDisplay {
public:
    // One at a time, on the main thread. lastAct: what must not be lost; it is called there before the program ends
    // with one line on standard error and EXIT_FAILURE.
    explicit LostDisplay(std::function<void()> lastAct);
    ~LostDisplay();
    LostDisplay(const LostDisplay&) = delete;
    LostDisplay& operator=(const LostDisplay&) = delete;
};

}  // namespace ovrin
