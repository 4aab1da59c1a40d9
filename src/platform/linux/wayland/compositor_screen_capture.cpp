#include "platform/linux/wayland/compositor_screen_capture.h"

#include "platform/linux/wayland/wayland_displays.h"

namespace ovrin {

Task<std::vector<CapturableDisplay>> CompositorScreenCapture::displays() {
    const auto list = [connection = connection_](const std::stop_token&) {
        return connection->useWithOutputs(displaysOf);
    };
    std::vector<CapturableDisplay> displays = co_await workers_.run(list);
    co_return displays;
}

Task<Image> CompositorScreenCapture::screenshot(ScreenshotRequest request) {
    const auto take = [connection = connection_, takePicture = takePicture_, request](const std::stop_token&) {
        return connection->use([&](WaylandConnection& used) { return takePicture(used, request); });
    };
    Image image = co_await workers_.run(take);
    co_return image;
}

}  // namespace ovrin
