// Pictures and tooltips as org.kde.StatusNotifierItem puts them on the bus.
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

class QImage;

namespace ovrin {

// 32-bit ARGB pixels in network byte order, row by row. "(iiay)"
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels{};

    static StatusNotifierPixmap of(const QImage& image);
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

// "(sa(iiay)ss)"
struct StatusNotifierToolTip {
    QString iconName{};
    StatusNotifierPixmaps icon{};
    QString title{};
    QString text{};
};

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

}  // namespace ovrin

Q_DECLARE_METATYPE(ovrin::StatusNotifierPixmap)
Q_DECLARE_METATYPE(ovrin::StatusNotifierToolTip)
