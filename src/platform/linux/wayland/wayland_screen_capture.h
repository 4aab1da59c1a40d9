// Pictures of the screen from compositors with the screencopy protocol.
#pragma once

#include "base/worker_executor.h"
#include "platform/screen_capture.h"

namespace ovrin {

class WaylandConnection;

// Connects anew for each call, which takes 2 ms and outlives a compositor that starts again.
class WaylandScreenCapture final : public ScreenCapture {
public:
    static bool isOfferedBy(const WaylandConnection& connection);

    // The workers outlive the object.
    explicit WaylandScreenCapture(WorkerExecutor& workers) : workers_(workers) {}

    // A compositor that offers the protocol asks nobody.
    bool preflightAccess() override { return true; }
    bool requestAccess() override { return true; }

    Task<std::vector<CapturableDisplay>> displays() override;
    Task<Image> screenshot(ScreenshotRequest request) override;

private:
    WorkerExecutor& workers_;
};

}  // namespace ovrin
