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
    QRect frame;             // points that windows are placed by
    double scaleFactor = 1;  // device pixels per point
    DisplayRect displaySpaceFrame;
    WindowRect windowSpaceFrame;
    WindowRect visibleFrame;  // without panels and docks

    // The frame in device pixels of the root window: the toolkit gives a display's corner in these, its size in points.
    PixelRect pixelFrame() const;
};

// All displays, the primary one first.
std::vector<ScreenInfo> screenInfos();

// Between the points that windows are placed by and window space; there has to be a display.
WindowRect toWindowSpace(const QRect& rectangle);
QPoint fromWindowSpace(WindowPoint point);

// The point that windows are placed by, of a device pixel of the root window.
QPoint toPoints(const QPoint& pixel);

}  // namespace ovrin
