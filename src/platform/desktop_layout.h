// Seam: where the displays of the desktop are, what of them is free for windows, and where the pointer is.
#pragma once

#include <algorithm>
#include <vector>

#include "base/geometry.h"
#include "base/task.h"

namespace ovrin {

struct DesktopScreen {
    WindowRect frame;
    WindowRect visibleFrame;  // without panels and docks

    bool operator==(const DesktopScreen&) const = default;
};

// Main thread. Every answer tells how things are at the moment of the call.
class DesktopLayout {
public:
    virtual ~DesktopLayout() = default;

    // The primary display first; empty when there is none.
    virtual std::vector<DesktopScreen> screens() = 0;

    // The lower-left corner of the point below the pointer's tip: within its display's frame, never on the frame's
    // upper or right edge. At once where the desktop tells it; else some milliseconds later, at the most 50. The place
    // is a likely one where the desktop does not say.
    virtual Task<WindowPoint> pointerLocation() = 0;
};

// What windows may use of the display that the point is on, or else of the primary one; nothing without a display.
inline WindowRect visibleFrameAt(WindowPoint point, const std::vector<DesktopScreen>& screens) {
    if (screens.empty()) return {};
    const auto screen = std::ranges::find_if(
        screens, [point](const DesktopScreen& candidate) { return candidate.frame.contains(point); });
    return screen != screens.end() ? screen->visibleFrame : screens.front().visibleFrame;
}

}  // namespace ovrin
