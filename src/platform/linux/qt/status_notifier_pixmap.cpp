#include "platform/linux/qt/status_notifier_pixmap.h"

#include <QImage>
#include <QtEndian>

namespace ovrin {

StatusNotifierPixmap StatusNotifierPixmap::of(const QImage& image) {
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap{.width = pixels.width(), .height = pixels.height()};
    pixmap.pixels.resize(pixels.sizeInBytes());
    qToBigEndian<quint32>(pixels.constBits(), static_cast<qsizetype>(pixels.width()) * pixels.height(),
                          pixmap.pixels.data());
    return pixmap;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

}  // namespace ovrin
