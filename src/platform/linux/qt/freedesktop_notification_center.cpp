#include "platform/linux/qt/freedesktop_notification_center.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "base/environment.h"
#include "platform/linux/application_name.h"
#include "platform/linux/session_bus.h"

namespace ovrin {

namespace {

QDBusMessage request(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                          QStringLiteral("/org/freedesktop/Notifications"),
                                          QStringLiteral("org.freedesktop.Notifications"), method);
}

QDBusMessage display(const QString& title, const QString& body) {
    constexpr uint replacesNone = 0;
    constexpr int timeOfTheDesktop = -1;
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QString::fromLatin1(applicationId)},
                            {QStringLiteral("suppress-sound"), true}};
    QDBusMessage message = request(QStringLiteral("Notify"));
    message << QStringLiteral("Ovrin") << replacesNone << QString::fromLatin1(applicationId) << title << body
            << QStringList() << hints << timeOfTheDesktop;
    return message;
}

}  // namespace

class FreedesktopNotificationCenter::Service final : public QObject {
public:
    // Some services take the body as markup, others as it is: they are asked each time, as they may be replaced while
    // the program runs.
    void display(const QString& title, const QString& body) {
        auto* const call =
            new QDBusPendingCallWatcher(bus_.asyncCall(request(QStringLiteral("GetCapabilities"))), this);
        connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, title, body] {
            const QDBusPendingReply<QStringList> capabilities = *call;
            call->deleteLater();
            if (capabilities.isError()) return;
            const bool takesMarkup = capabilities.value().contains(QStringLiteral("body-markup"));
            bus_.send(ovrin::display(title, takesMarkup ? body.toHtmlEscaped() : body));
        });
    }

private:
    QDBusConnection bus_ = QDBusConnection::sessionBus();
};

FreedesktopNotificationCenter::FreedesktopNotificationCenter() {
    if (sessionBus(Environment::ofProcess()) != SessionBus::none) service_ = std::make_unique<Service>();
}

FreedesktopNotificationCenter::~FreedesktopNotificationCenter() = default;

void FreedesktopNotificationCenter::add(Notification notification) {
    if (service_)
        service_->display(QString::fromStdString(notification.title), QString::fromStdString(notification.body));
}

}  // namespace ovrin
