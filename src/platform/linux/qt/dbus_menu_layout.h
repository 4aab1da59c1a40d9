// The lines of a menu as com.canonical.dbusmenu puts them on the bus.
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <map>

#include "platform/menu.h"

namespace ovrin {

// One line with those below it. "(ia{sv}av)"
struct DBusMenuLine {
    int id = 0;
    QVariantMap properties{};
    QList<DBusMenuLine> children{};

    // The line with children down to the depth, all of them when it is negative, and with the properties of these names
    // alone, or with all when there are no names.
    DBusMenuLine excerpt(int depth, const QStringList& names) const;
    // The line of that number among this one and those below it; null when there is none.
    const DBusMenuLine* find(int wanted) const;
    // Whether both show the same, whatever their numbers.
    bool looksLike(const DBusMenuLine& other) const;
};

// Properties of one line. "(ia{sv})"
struct DBusMenuProperties {
    int id = 0;
    QVariantMap properties{};
};

// "(isvu)"
struct DBusMenuEvent {
    int id = 0;
    QString name{};
    QDBusVariant data{};
    uint timestamp = 0;
};

// Makes the types known to the bus.
void registerDBusMenuTypes();

// A menu with its numbers.
struct DBusMenuLayout {
    static constexpr int rootId = 0;

    DBusMenuLine root{};
    std::map<int, std::function<void()>> actions{};  // of the lines that can be chosen

    // png: the picture of an icon as the bytes of a PNG file. lastId: the highest number given so far, which grows.
    static DBusMenuLayout of(const Menu& menu, const std::function<QByteArray(OVIcon)>& png, int& lastId);
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLine& line);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLine& line);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& properties);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

}  // namespace ovrin

Q_DECLARE_METATYPE(ovrin::DBusMenuLine)
Q_DECLARE_METATYPE(ovrin::DBusMenuProperties)
Q_DECLARE_METATYPE(ovrin::DBusMenuEvent)
