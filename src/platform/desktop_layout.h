// Seam: where the displays of the desktop are, what of them is free for windows, and where the pointer is.
#pragma once

#include <vector>

#include "base/geometry.h"

namespace ovrin {

struct DesktopScreen {
    WindowRect frame;
    WindowRect visibleFrame;  // without panels and docks

    bool operator==(const DesktopScreen&) const = default;
};

// Main thread. As things are at the moment of the call.
class DesktopLayout {
public:
    virtual ~DesktopLayout() = default;

    // The primary display first; empty when there is none.
    virtual std::vector<DesktopScreen> screens() = 0;

    // The lower-left corner of the point below the pointer's tip: within its display's frame, never on the frame's
    // upper or right edge.
    virtual WindowPoint pointerLocation() = 0;
};

}  // namespace ovrin
