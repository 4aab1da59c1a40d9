#include "platform/linux/wayland/compositor_screen_capture.h"

#include <mutex>
#include <utility>

#include "base/error.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_displays.h"

namespace ovrin {

// A connection that is in use is nobody else's. One that has failed is not kept.
class CompositorScreenCapture::KeptConnection {
public:
    std::vector<CapturableDisplay> displays() {
        auto connection = upToDate(take());
        std::vector<CapturableDisplay> displays = displaysOf(*connection);
        put(std::move(connection));
        return displays;
    }

    Image picture(TakePicture takePicture, const ScreenshotRequest& request) {
        auto connection = take();
        if (!connection) connection = std::make_unique<WaylandConnection>();
        Image image = takePicture(*connection, request);
        put(std::move(connection));
        return image;
    }

private:
    static std::unique_ptr<WaylandConnection> upToDate(std::unique_ptr<WaylandConnection> kept) {
        try {
            if (kept) kept->refreshOutputs();
        } catch (const Error&) {
            kept.reset();  // the compositor has started again since
        }
        return kept ? std::move(kept) : std::make_unique<WaylandConnection>();
    }

    std::unique_ptr<WaylandConnection> take() {
        const std::scoped_lock lock(mutex_);
        return std::move(connection_);
    }
    void put(std::unique_ptr<WaylandConnection> connection) {
        const std::scoped_lock lock(mutex_);
        connection_ = std::move(connection);
    }

    std::mutex mutex_;
    std::unique_ptr<WaylandConnection> connection_;
};

CompositorScreenCapture::CompositorScreenCapture(WorkerExecutor& workers, TakePicture takePicture)
    : workers_(workers), takePicture_(takePicture), kept_(std::make_shared<KeptConnection>()) {}

Task<std::vector<CapturableDisplay>> CompositorScreenCapture::displays() {
    const auto list = [kept = kept_](const std::stop_token&) { return kept->displays(); };
    std::vector<CapturableDisplay> displays = co_await workers_.run(list);
    co_return displays;
}

Task<Image> CompositorScreenCapture::screenshot(ScreenshotRequest request) {
    const auto take = [kept = kept_, takePicture = takePicture_, request](const std::stop_token&) {
        return kept->picture(takePicture, request);
    };
    Image image = co_await workers_.run(take);
    co_return image;
}

}  // namespace ovrin
