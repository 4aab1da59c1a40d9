// Pictures of the screen from KWin, the compositor of KDE Plasma, which speaks no protocol for them but answers on the
// session bus.
#pragma once

#include "base/worker_executor.h"
#include "platform/screen_capture.h"

namespace ovrin {

// Connects anew for each call, as WaylandScreenCapture does.
class KWinScreenCapture final : public ScreenCapture {
public:
    // Whether KWin is on the session bus. Blocks for two seconds where the bus doesn't answer.
    static bool isOffered();

    // The workers outlive the object.
    explicit KWinScreenCapture(WorkerExecutor& workers) : workers_(workers) {}

    // KWin asks nobody: it answers the programs whose installed desktop entry names the interface. Those it turns away
    // hear of it when they ask for a picture.
    bool preflightAccess() override { return true; }
    bool requestAccess() override { return true; }

    Task<std::vector<CapturableDisplay>> displays() override;
    Task<Image> screenshot(ScreenshotRequest request) override;

private:
    WorkerExecutor& workers_;
};

}  // namespace ovrin
