// The conversation with org.freedesktop.Notifications: shows notifications and hears which of them the user activates.
// No call waits for the service.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <map>

#include "platform/notification_center.h"

namespace ovrin {

// Main thread, where a session bus is.
class NotificationService final : public QObject {
    Q_OBJECT

public:
    explicit NotificationService(QObject* parent = nullptr);

    void display(Notification notification);

private slots:
    void actionInvoked(uint id, const QString& action);
    void notificationClosed(uint id, uint reason);

private:
    void send(const Notification& notification, bool takesMarkup);

    QDBusConnection bus_;
    std::map<uint, std::function<void()>> activations_;  // by the service's number for the notification
};

}  // namespace ovrin
