#include "views/status_item/status_bar_icon.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <array>

namespace ovrin {

namespace {

// Of each size the drawing whose lines fall on whole pixels there.
struct Size {
    int pixels;
    int drawing;
};
constexpr std::array<Size, 12> sizes{{{16, 16},
                                      {18, 16},
                                      {20, 22},
                                      {22, 22},
                                      {24, 24},
                                      {28, 24},
                                      {32, 16},
                                      {36, 24},
                                      {40, 22},
                                      {44, 22},
                                      {48, 24},
                                      {64, 16}}};

QByteArray drawing(int grid, const QColor& color) {
    QFile file(QStringLiteral(":/assets/status-bar-icon-%1.svg").arg(grid));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

}  // namespace

QList<QImage> statusBarImages(const QColor& color, double alpha) {
    QList<QImage> images;
    for (const Size& size : sizes) {
        QImage image(size.pixels, size.pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setOpacity(color.alphaF() * alpha);
        QSvgRenderer(drawing(size.drawing, color)).render(&painter);
        painter.end();
        images.append(image);
    }
    return images;
}

QIcon toQIcon(const QList<QImage>& sizes) {
    QIcon icon;
    for (const QImage& image : sizes) icon.addPixmap(QPixmap::fromImage(image));
    return icon;
}

}  // namespace ovrin
