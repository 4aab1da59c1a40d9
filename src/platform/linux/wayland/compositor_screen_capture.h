// What ways of a Wayland compositor to give pictures have in common: the displays are its outputs, and one connection
// is kept from call to call. A new one takes 2 ms and, in KWin, which looks up then what the program may do, 50 ms in
// which it does nothing else.
#pragma once

#include <memory>

#include "base/worker_executor.h"
#include "platform/screen_capture.h"

namespace ovrin {

class WaylandConnection;

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
    using TakePicture = Image (*)(WaylandConnection& connection, const ScreenshotRequest& request);

    // The workers outlive the object.
    CompositorScreenCapture(WorkerExecutor& workers, TakePicture takePicture);

    WorkerExecutor& workers() const { return workers_; }

private:
    class KeptConnection;

    WorkerExecutor& workers_;
    TakePicture takePicture_;
    std::shared_ptr<KeptConnection> kept_;  // with what runs on a worker, too
};

}  // namespace ovrin
