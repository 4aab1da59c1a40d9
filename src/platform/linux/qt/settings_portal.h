// The desktop's settings as org.freedesktop.portal.Settings tells them. Asked and heard over the session bus without
// waiting.
#pragma once

#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class QDBusPendingCallWatcher;

namespace ovrin {

class SettingsPortal final : public QObject {
    Q_OBJECT

public:
    // Values by group, then key.
    using Settings = QMap<QString, QVariantMap>;

    explicit SettingsPortal(QObject* parent = nullptr) : QObject(parent) {}

    // Asks for what the program wants to know. Either changed() or unavailable() follows.
    void start();

    // The value; an invalid one for what the desktop does not tell.
    QVariant value(const QString& group, const QString& key) const { return settings_.value(group).value(key); }

signals:
    void changed();
    void unavailable();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void answerArrived(QDBusPendingCallWatcher* call);

    Settings settings_;
};

}  // namespace ovrin
