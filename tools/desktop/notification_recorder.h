// A notification daemon that shows nothing and remembers everything. It lives on a private bus as long as the object.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "desktop/bus_service.h"

namespace ovrin {

class NotificationRecorder {
public:
    // Returns once notifications can be sent. Throws Error when there is no bus or another daemon serves it.
    explicit NotificationRecorder(const std::string& busAddress);

    struct Notification {
        std::string program;
        std::string title;
        std::string body;
    };
    // In the order in which they came. Any thread.
    std::vector<Notification> notifications() const;

    // The user clicks on the notification of this number, counted from 0.
    void activate(std::size_t number) const;

private:
    GVariant* answer(const std::string& method, GVariant* arguments);

    mutable std::mutex mutex_;
    std::vector<Notification> notifications_;  // guarded by the mutex
    BusService service_;                       // the last member: it ends before what it uses
};

}  // namespace ovrin
