// Pictures of the X11 root window through shared memory. The pointer is no part of them.
#pragma once

#include <memory>
#include <mutex>

#include "base/geometry.h"
#include "base/image.h"

namespace ovrin {

class X11Screenshot {
public:
    // Connects to the display that DISPLAY names on first use.
    X11Screenshot();
    ~X11Screenshot();
    X11Screenshot(const X11Screenshot&) = delete;
    X11Screenshot& operator=(const X11Screenshot&) = delete;

    // What is on the screen now, in pixels from the root window's upper-left corner; what lies outside of it stays
    // black. Any thread; calls take turns. Throws Error when there is no display or it fails.
    Image take(const PixelRect& rectangle);

    // Has the memory for the next picture made ahead, which then comes quicker if it is of this size, in pixels, or
    // smaller. Any thread; waits for the server only to connect, and for a picture that is being taken. Nothing comes
    // of it when it fails.
    void prepare(int width, int height);

private:
    class Connection;

    void connect();  // with the lock held

    std::mutex mutex_;
    std::unique_ptr<Connection> connection_;
};

}  // namespace ovrin
