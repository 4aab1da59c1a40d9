// Seam: the transparent windows over every display through which the user chooses a part of the screen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "base/image.h"

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

    // Whether overlays can only be drawn on a picture of what lies beneath them.
    virtual bool needBackdrops() = 0;

    // Covers the display with that frame; backdrop: a picture of it, none where none is needed or to be had. The
    // callbacks come later, on the main thread; the overlay may be destroyed from inside them.
    virtual std::unique_ptr<CaptureOverlayWindow> show(const DisplayRect& screenFrame, std::optional<Image> backdrop,
                                                       Callbacks callbacks) = 0;

    // Brings the program to the front, so that the overlays hear the keyboard.
    virtual void activateApplication() = 0;
};

}  // namespace ovrin
