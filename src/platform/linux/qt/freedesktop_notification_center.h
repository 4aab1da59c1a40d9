// Notifications over org.freedesktop.Notifications. Where no service answers, none is shown.
#pragma once

#include <memory>

#include "platform/notification_center.h"

namespace ovrin {

class NotificationService;

// For a session with a bus. To be made after the QCoreApplication, before which it must go. No call waits for the
// service.
class FreedesktopNotificationCenter final : public NotificationCenter {
public:
    FreedesktopNotificationCenter();
    ~FreedesktopNotificationCenter() override;
    FreedesktopNotificationCenter(const FreedesktopNotificationCenter&) = delete;
    FreedesktopNotificationCenter& operator=(const FreedesktopNotificationCenter&) = delete;

    // These desktops let every program notify.
    void requestAuthorization(NotificationAuthorization /*wanted*/) override {}
    void add(Notification notification) override;

private:
    std::unique_ptr<NotificationService> service_;
};

}  // namespace ovrin
