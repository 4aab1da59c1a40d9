// The displays and pictures of what is on them, on X11.
#pragma once

#include "base/worker_executor.h"
#include "platform/linux/x11/x11_screenshot.h"
#include "platform/screen_capture.h"

namespace ovrin {

class X11ScreenCapture final : public ScreenCapture {
public:
    // Both outlive the object.
    X11ScreenCapture(X11Screenshot& screenshot, WorkerExecutor& workers) : screenshot_(screenshot), workers_(workers) {}

    // X11 lets every program see the screen.
    bool preflightAccess() override { return true; }
    Task<bool> requestAccess() override { co_return true; }

    Task<std::vector<CapturableDisplay>> displays() override;
    void prepare(const ScreenshotRequest& request) override { screenshot_.prepare(request.width, request.height); }
    Task<Image> screenshot(ScreenshotRequest request) override;

private:
    X11Screenshot& screenshot_;
    WorkerExecutor& workers_;
};

}  // namespace ovrin
