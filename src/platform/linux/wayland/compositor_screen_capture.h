// What ways of a Wayland compositor to give pictures have in common: the displays are its outputs, and each call
// connects anew, which takes 2 ms and outlives a compositor that starts again.
#pragma once

#include "base/worker_executor.h"
#include "platform/screen_capture.h"

namespace ovrin {

class CompositorScreenCapture : public ScreenCapture {
public:
    // Nobody is asked: what a compositor doesn't give is an error of the picture.
    bool preflightAccess() override { return true; }
    Task<bool> requestAccess() override { co_return true; }

    Task<std::vector<CapturableDisplay>> displays() final;
    void prepare(const ScreenshotRequest& /*request*/) final {}
    Task<Image> screenshot(ScreenshotRequest request) final;

protected:
    // Runs on a worker. Throws Error.
    using TakePicture = Image (*)(const ScreenshotRequest& request);

    // The workers outlive the object.
    CompositorScreenCapture(WorkerExecutor& workers, TakePicture takePicture)
        : workers_(workers), takePicture_(takePicture) {}

    WorkerExecutor& workers() const { return workers_; }

private:
    WorkerExecutor& workers_;
    TakePicture takePicture_;
};

}  // namespace ovrin
