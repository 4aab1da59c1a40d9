// Lets the user drag a rectangle over any display: one overlay a display, the first that reports ends them all.
// When displays come or go meanwhile the user begins anew on those that are there.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/capture_overlays.h"
#include "recognition/region_selector.h"

namespace ovrin {

class CaptureController final : public RegionSelector {
public:
    // hideSettingsWindow is called at each begin(): the settings must not cover what is to be captured.
    CaptureController(CaptureOverlays& overlays, std::function<void()> hideSettingsWindow);

    void begin(Completion completion) override;
    bool isSelecting() const { return !overlayWindows_.empty(); }

private:
    void showOverlays();
    void reset();
    void finish(const Result& result);
    void cancelled();

    CaptureOverlays& overlays_;
    std::function<void()> hideSettingsWindow_;
    std::vector<std::unique_ptr<CaptureOverlayWindow>> overlayWindows_;
    Completion completion_;
};

}  // namespace ovrin
