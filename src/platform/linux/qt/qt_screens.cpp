#include "platform/linux/qt/qt_screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace ovrin {

namespace {

Rect toRect(const QRect& rectangle) {
    return {static_cast<double>(rectangle.x()), static_cast<double>(rectangle.y()),
            static_cast<double>(rectangle.width()), static_cast<double>(rectangle.height())};
}

}  // namespace

PixelRect ScreenInfo::pixelFrame() const {
    const auto pixels = [this](int points) { return static_cast<int>(std::lround(points * scaleFactor)); };
    return {frame.x(), frame.y(), pixels(frame.width()), pixels(frame.height())};
}

std::vector<ScreenInfo> screenInfos() {
    std::vector<ScreenInfo> infos;
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr) return infos;
    const QRect origin = primary->geometry();
    // The toolkit lists the primary screen first.
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect frame = screen->geometry();
        infos.push_back({.frame = frame,
                         .scaleFactor = screen->devicePixelRatio(),
                         .windowSpaceFrame = toWindowSpace(frame),
                         .visibleFrame = toWindowSpace(screen->availableGeometry()),
                         .displaySpaceFrame = toRect(frame.translated(-origin.topLeft()))});
    }
    return infos;
}

Rect toWindowSpace(const QRect& rectangle) {
    const QRect origin = QGuiApplication::primaryScreen()->geometry();
    Rect result = toRect(rectangle.translated(-origin.topLeft()));
    result.y = origin.height() - result.y - result.height;
    return result;
}

QPoint fromWindowSpace(const Point& point) {
    const QRect origin = QGuiApplication::primaryScreen()->geometry();
    return {static_cast<int>(std::lround(point.x)) + origin.x(),
            origin.y() + origin.height() - static_cast<int>(std::lround(point.y))};
}

QPoint toPoints(const QPoint& pixel) {
    for (const ScreenInfo& screen : screenInfos()) {
        const PixelRect frame = screen.pixelFrame();
        const QPoint offset(pixel.x() - frame.x, pixel.y() - frame.y);
        if (!QRect(0, 0, frame.width, frame.height).contains(offset)) continue;
        return screen.frame.topLeft() + offset / screen.scaleFactor;
    }
    return pixel;
}

}  // namespace ovrin
