#include "platform/linux/qt/qt_screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace ovrin {

namespace {

DisplayRect toDisplaySpace(const QRect& rectangle) {
    const QRectF moved = rectangle.translated(-QGuiApplication::primaryScreen()->geometry().topLeft());
    return {moved.x(), moved.y(), moved.width(), moved.height()};
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
    // The toolkit lists the primary screen first.
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect frame = screen->geometry();
        infos.push_back({.frame = frame,
                         .scaleFactor = screen->devicePixelRatio(),
                         .displaySpaceFrame = toDisplaySpace(frame),
                         .windowSpaceFrame = toWindowSpace(frame),
                         .visibleFrame = toWindowSpace(screen->availableGeometry())});
    }
    return infos;
}

WindowRect toWindowSpace(const QRect& rectangle) {
    return toWindowSpace(toDisplaySpace(rectangle), QGuiApplication::primaryScreen()->geometry().height());
}

QPoint fromWindowSpace(WindowPoint point) {
    const QRect primary = QGuiApplication::primaryScreen()->geometry();
    const DisplayPoint place = toDisplaySpace(point, primary.height());
    return primary.topLeft() + QPointF(place.x, place.y).toPoint();
}

QPoint toPoints(const QPoint& pixel) {
    for (const ScreenInfo& screen : screenInfos()) {
        const PixelRect frame = screen.pixelFrame();
        if (!frame.contains({pixel.x(), pixel.y()})) continue;
        return screen.frame.topLeft() + (pixel - QPoint(frame.x, frame.y)) / screen.scaleFactor;
    }
    return pixel;
}

}  // namespace ovrin
