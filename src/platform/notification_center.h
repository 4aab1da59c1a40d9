// Seam: the notifications of the desktop, for what happens without a window.
#pragma once

#include <functional>
#include <string>

namespace ovrin {

struct Notification {
    std::string identifier;  // fresh for every notification: none replaces another
    std::string title;       // UTF-8, plain text
    std::string body;        // UTF-8, plain text
    // Called at most once, from the main loop, when the user activates the notification; none: activating it does
    // nothing. Some desktops know no activating, so that nothing may be reached by it alone.
    std::function<void()> activated{};
};

struct NotificationAuthorization {
    bool alerts = false;
    bool sounds = false;
};

// Main thread; all calls return at once and never fail: a desktop without notifications shows none.
class NotificationCenter {
public:
    // Nothing is called any more once it is gone.
    virtual ~NotificationCenter() = default;

    // Asks for the permission to notify where the desktop wants to be asked. The answer shows in what add() does.
    virtual void requestAuthorization(NotificationAuthorization wanted) = 0;

    // Delivers the notification now, without sound.
    virtual void add(Notification notification) = 0;
};

}  // namespace ovrin
