// Lets the user drag a rectangle over any display: one overlay a display, the first that reports ends them all.
// When displays come or go meanwhile the user begins anew on those that are there.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/event_loop.h"
#include "base/running_task.h"
#include "platform/capture_overlays.h"
#include "recognition/region_selector.h"
#include "recognition/screen_capture_service.h"

namespace ovrin {

class CaptureController final : public RegionSelector {
public:
    // The screen is what overlays that need it are drawn on. All outlive the controller. hideSettingsWindow is called
    // at each begin(): the settings must not cover what is to be captured.
    CaptureController(EventLoop& loop, CaptureOverlays& overlays, ScreenCapture& screen,
                      std::function<void()> hideSettingsWindow);

    void begin(Completion completion) override;
    bool isSelecting() const { return showing_.isRunning() || !overlayWindows_.empty(); }

private:
    Task<void> showOverlays();
    Task<std::vector<std::optional<Image>>> backdropsOf(std::vector<DisplayRect> frames);
    void reset();
    void finish(const Result& result);
    void cancelled();

    CaptureOverlays& overlays_;
    ScreenCaptureService screen_;
    std::function<void()> hideSettingsWindow_;
    std::vector<std::unique_ptr<CaptureOverlayWindow>> overlayWindows_;
    Completion completion_;
    TaskSlot showing_;
};

}  // namespace ovrin
