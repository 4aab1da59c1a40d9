// The displays as the window toolkit sees them, in the coordinate spaces of the program. Main thread.
#pragma once

#include <QPoint>
#include <QRect>
#include <vector>

#include "base/geometry.h"
#include "platform/linux/x11/x11_screenshot.h"

class QScreen;

namespace ovrin {

struct ScreenInfo {
    QRect frame;             // points, as windows are placed
    double scaleFactor = 1;  // device pixels per point
    DisplayRect displaySpaceFrame;
    WindowRect windowSpaceFrame;
    WindowRect visibleFrame;  // without panels and docks

    // Device pixels of the root window: a display's corner is given in them, its size in points.
    PixelRect pixelFrame() const;
};

// All displays, the primary one first.
std::vector<ScreenInfo> screenInfos();

// Between where windows are placed and window space; there has to be a display.
WindowRect toWindowSpace(const QRect& rectangle);
QPoint fromWindowSpace(WindowPoint point);

// Where windows are placed, of a device pixel of the root window.
QPoint toPoints(const QPoint& pixel);

}  // namespace ovrin
