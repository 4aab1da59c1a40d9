// Puts the capture overlays on the displays of an X11 desktop.
#pragma once

#include "platform/capture_overlays.h"

namespace ovrin {

class ViewEnvironment;
class X11Screenshot;

class QtCaptureOverlays final : public CaptureOverlays {
public:
    // Both outlive the object.
    QtCaptureOverlays(const ViewEnvironment& environment, X11Screenshot& screenshot)
        : environment_(environment), screenshot_(screenshot) {}

    std::vector<DisplayRect> screenFrames() override;
    std::unique_ptr<CaptureOverlayWindow> show(const DisplayRect& screenFrame, Callbacks callbacks) override;
    // The overlays take the keyboard themselves: the window manager does not know of them.
    void activateApplication() override {}

private:
    const ViewEnvironment& environment_;
    X11Screenshot& screenshot_;
};

}  // namespace ovrin
