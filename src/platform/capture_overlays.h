// Seam: the transparent windows over every display through which the user chooses a part of the screen.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/geometry.h"

namespace ovrin {

// One overlay on screen; destroying it takes it away at once.
class CaptureOverlayWindow {
public:
    virtual ~CaptureOverlayWindow() = default;
};

class CaptureOverlays {
public:
    struct Callbacks {
        std::function<void(DisplayRect)> onSelection;
        std::function<void()> onCancel;
        std::function<void()> onScreensChanged;  // displays came, went or changed: the overlays no longer fit
    };

    virtual ~CaptureOverlays() = default;

    // The frames of all displays, the primary one first.
    virtual std::vector<DisplayRect> screenFrames() = 0;

    // Covers the display with that frame. The callbacks come later, on the main thread; the overlay may be destroyed
    // from inside them.
    virtual std::unique_ptr<CaptureOverlayWindow> show(const DisplayRect& screenFrame, Callbacks callbacks) = 0;

    // Brings the program to the front, so that the overlays hear the keyboard.
    virtual void activateApplication() = 0;
};

}  // namespace ovrin
