// Notifications over org.freedesktop.Notifications. A desktop without a notification service shows none.
#pragma once

#include <memory>

#include "platform/notification_center.h"

namespace ovrin {

class NotificationService;

// After the QCoreApplication, before which it must go. No call waits for the service.
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
    std::unique_ptr<NotificationService> service_;  // null without a session bus
};

}  // namespace ovrin
