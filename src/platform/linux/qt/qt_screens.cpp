#include "platform/linux/qt/qt_screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace ovrin {

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
        const Rect displaySpace{static_cast<double>(frame.x() - origin.x()),
                                static_cast<double>(frame.y() - origin.y()), static_cast<double>(frame.width()),
                                static_cast<double>(frame.height())};
        infos.push_back({.frame = frame,
                         .scaleFactor = screen->devicePixelRatio(),
                         .windowSpaceFrame = {displaySpace.x, origin.height() - displaySpace.y - displaySpace.height,
                                              displaySpace.width, displaySpace.height},
                         .displaySpaceFrame = displaySpace});
    }
    return infos;
}

}  // namespace ovrin
