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
    Rect windowSpaceFrame;   // points, origin at the primary display's lower-left corner, y upwards
    Rect visibleFrame;       // the same, without panels and docks
    Rect displaySpaceFrame;  // points, origin at the primary display's upper-left corner, y downwards

    // Device pixels of the root window: a display's corner is given in them, its size in points.
    PixelRect pixelFrame() const;
};

// All displays, the primary one first.
std::vector<ScreenInfo> screenInfos();

// Between where windows are placed and window space; there has to be a display.
Rect toWindowSpace(const QRect& rectangle);
QPoint fromWindowSpace(const Point& point);

// Where windows are placed, of a device pixel of the root window.
QPoint toPoints(const QPoint& pixel);

}  // namespace ovrin
