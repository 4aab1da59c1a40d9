// Puts the capture overlays on the displays of the desktop.
#pragma once

#include "platform/capture_overlays.h"

namespace ovrin {

class ViewEnvironment;

class QtCaptureOverlays final : public CaptureOverlays {
public:
    // The environment outlives the object.
    explicit QtCaptureOverlays(const ViewEnvironment& environment) : environment_(environment) {}

    std::vector<DisplayRect> screenFrames() override;
    bool needBackdrops() override;
    std::unique_ptr<CaptureOverlayWindow> show(const DisplayRect& screenFrame, std::optional<Image> backdrop,
                                               Callbacks callbacks) override;
    // The overlays take the keyboard themselves: the window manager does not know of them.
    void activateApplication() override {}

private:
    const ViewEnvironment& environment_;
};

}  // namespace ovrin
