#include "platform/linux/qt/wayland_desktop_layout.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <optional>

#include "base/error.h"
#include "platform/linux/qt/qt_screens.h"
#include "platform/linux/wayland/wayland_pointer.h"

namespace ovrin {

namespace {

// Where windows are placed. The toolkit knows an output by its name, and counts in points of its own where it has been
// told to scale.
QPoint toolkitPoint(const WaylandPointerPlace& place) {
    const auto screens = QGuiApplication::screens();
    const auto name = QString::fromStdString(place.outputName);
    const auto found = std::ranges::find(screens, name, &QScreen::name);
    QRect frame(place.outputFrame.x, place.outputFrame.y, place.outputFrame.width, place.outputFrame.height);
    if (found != screens.end()) frame = (*found)->geometry();
    const double scale = static_cast<double>(frame.width()) / std::max(place.outputFrame.width, 1);
    return frame.topLeft() + QPoint(static_cast<int>(std::floor(place.point.x * scale)),
                                    static_cast<int>(std::floor(place.point.y * scale)));
}

}  // namespace

Task<WindowPoint> WaylandDesktopLayout::pointerLocation() {
    std::optional<WaylandPointerPlace> place;
    try {
        const auto find = [connection = connection_](const std::stop_token&) {
            return connection->useWithOutputs(WaylandPointer::find);
        };
        place = co_await workers_.run(find);
    } catch (const Error&) {
        place.reset();  // the compositor has gone, and the windows with it
    }
    const QScreen* const primary = QGuiApplication::primaryScreen();
    if (primary == nullptr) co_return WindowPoint();
    const QPoint point = place ? toolkitPoint(*place) : primary->geometry().center();
    const WindowRect below = toWindowSpace(QRect(point, QSize(1, 1)));
    co_return WindowPoint{below.x, below.y};
}

}  // namespace ovrin
