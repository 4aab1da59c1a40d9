#include "platform/linux/qt/notification_service.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>
#include <utility>

#include "platform/linux/desktop/application_name.h"

namespace ovrin {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString defaultAction = QStringLiteral("default");  // a click on the notification itself
constexpr uint expired = 1;                               // a reason to be closed

QDBusMessage request(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

}  // namespace

NotificationService::NotificationService(QObject* parent) : QObject(parent), bus_(QDBusConnection::sessionBus()) {
    bus_.connect(service, path, service, QStringLiteral("ActionInvoked"), this, SLOT(actionInvoked(uint, QString)));
    bus_.connect(service, path, service, QStringLiteral("NotificationClosed"), this,
                 SLOT(notificationClosed(uint, uint)));
    // Another service counts from the beginning again: its numbers mean other notifications.
    auto* const watcher = new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { activations_.clear(); });
}

// Some services take the body as markup, others as it is: they are asked each time, as they may be replaced while the
// program runs.
void NotificationService::display(Notification notification) {
    auto* const call = new QDBusPendingCallWatcher(bus_.asyncCall(request(QStringLiteral("GetCapabilities"))), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, notification = std::move(notification)] {
        const QDBusPendingReply<QStringList> capabilities = *call;
        call->deleteLater();
        if (!capabilities.isError()) {
            send(notification, capabilities.value().contains(QStringLiteral("body-markup")));
        }
    });
}

void NotificationService::send(const Notification& notification, bool takesMarkup) {
    constexpr uint replacesNone = 0;
    constexpr int timeOfTheDesktop = -1;
    const QString body = QString::fromStdString(notification.body);
    const QStringList actions =
        notification.activated ? QStringList{defaultAction, QStringLiteral("打开")} : QStringList();
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QString::fromLatin1(applicationId)},
                            {QStringLiteral("suppress-sound"), true}};
    QDBusMessage message = request(QStringLiteral("Notify"));
    message << QStringLiteral("Ovrin") << replacesNone << QString::fromLatin1(applicationId)
            << QString::fromStdString(notification.title) << (takesMarkup ? body.toHtmlEscaped() : body) << actions
            << hints << timeOfTheDesktop;
    if (!notification.activated) {
        bus_.send(message);
        return;
    }
    auto* const call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, activated = notification.activated] {
        const QDBusPendingReply<uint> number = *call;
        call->deleteLater();
        if (!number.isError()) activations_[number.value()] = activated;
    });
}

void NotificationService::actionInvoked(uint id, const QString& action) {
    // Services tell everybody of everything that happens to the notifications of all programs.
    if (action != defaultAction) return;
    if (const auto known = activations_.extract(id)) known.mapped()();
}

// One that expired may still lie in a list of the desktop, from where it can be activated.
void NotificationService::notificationClosed(uint id, uint reason) {
    if (reason != expired) activations_.erase(id);
}

}  // namespace ovrin
