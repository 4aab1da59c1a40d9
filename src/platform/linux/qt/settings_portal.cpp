#include "platform/linux/qt/settings_portal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>

namespace ovrin {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

// Some portals wrap values twice.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

void SettingsPortal::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Without its type known by name the slot below would not be found.
    qRegisterMetaType<QDBusVariant>();
    // Heard before asked, so that no change is missed.
    bus.connect(service, path, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, settingsInterface, QStringLiteral("ReadAll"));
    question << QStringList{QStringLiteral("org.freedesktop.appearance"), QStringLiteral("org.gnome.desktop.interface"),
                            QStringLiteral("org.kde.kdeglobals.KDE")};
    auto* const call = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, &SettingsPortal::answerArrived);
}

void SettingsPortal::answerArrived(QDBusPendingCallWatcher* call) {
    qDBusRegisterMetaType<Settings>();
    const QDBusPendingReply<Settings> reply = *call;
    call->deleteLater();
    if (reply.isError()) return emit unavailable();
    settings_ = reply.value();
    for (auto& group : settings_) {
        for (auto& value : group) value = unwrapped(value);
    }
    emit changed();
}

void SettingsPortal::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    settings_[group][key] = unwrapped(value.variant());
    emit changed();
}

}  // namespace ovrin
