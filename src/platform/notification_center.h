// Seam: the notifications of the desktop, for what happens without a window.
#pragma once

#include <string>

namespace ovrin {

struct Notification {
    std::string identifier;  // fresh for every notification: none replaces another
    std::string title;       // UTF-8, plain text
    std::string body;        // UTF-8, plain text
};

struct NotificationAuthorization {
    bool alerts = false;
    bool sounds = false;
};

// Main thread; both calls return at once and never fail: a desktop without notifications shows none.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    // Asks for the permission to notify where the desktop wants to be asked. The answer shows in what add() does.
    virtual void requestAuthorization(NotificationAuthorization wanted) = 0;

    // Delivers the notification now, without sound.
    virtual void add(Notification notification) = 0;
};

}  // namespace ovrin
