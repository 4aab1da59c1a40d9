// The end of the display server. The window toolkit meets it, over X11 and Wayland alike, by a warning of its own and
// an end of the program on the spot, in which nothing is destroyed.
#pragma once

#include <functional>

namespace ovrin {

class LostDisplay {
public:
    static constexpr const char* lastWords = "ovrin: the display server has ended the connection; the assistant ends\n";

    struct Acts {
        std::function<void()> last;       // so that nothing is lost; on the main thread
        std::function<void()> startAnew;  // where a Wayland compositor has gone; any thread; returns if it can't
    };
    // One at a time, on the main thread. After these acts the program ends with lastWords on standard error and
    // EXIT_FAILURE.
    explicit LostDisplay(Acts acts);
    ~LostDisplay();
    LostDisplay(const LostDisplay&) = delete;
    LostDisplay& operator=(const LostDisplay&) = delete;
};

}  // namespace ovrin
