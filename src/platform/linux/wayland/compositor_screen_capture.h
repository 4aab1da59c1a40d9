// What ways of a Wayland compositor to give pictures have in common: the displays are its outputs.
#pragma once

#include <memory>

#include "base/worker_executor.h"
#include "platform/linux/wayland/kept_wayland_connection.h"
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
    using TakePicture = Image (*)(WaylandConnection& connection, const ScreenshotRequest& request);

    // The workers outlive the object.
    CompositorScreenCapture(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection,
                            TakePicture takePicture)
        : workers_(workers), connection_(std::move(connection)), takePicture_(takePicture) {}

    WorkerExecutor& workers() const { return workers_; }

private:
    WorkerExecutor& workers_;
    std::shared_ptr<KeptWaylandConnection> connection_;  // shared with what runs on a worker
    TakePicture takePicture_;
};

}  // namespace ovrin
