#include "platform/linux/qt/qt_desktop_layout.h"

#include <QCursor>
#include <QGuiApplication>

#include "platform/linux/qt/qt_screens.h"

namespace ovrin {

std::vector<DesktopScreen> QtDesktopLayout::screens() {
    std::vector<DesktopScreen> screens;
    for (const ScreenInfo& info : screenInfos()) {
        screens.push_back({.frame = info.windowSpaceFrame, .visibleFrame = info.visibleFrame});
    }
    return screens;
}

Task<WindowPoint> QtDesktopLayout::pointerLocation() {
    if (QGuiApplication::primaryScreen() == nullptr) co_return WindowPoint();
    const WindowRect point = toWindowSpace(QRect(QCursor::pos(), QSize(1, 1)));
    co_return WindowPoint{point.x, point.y};
}

}  // namespace ovrin
