#include "platform/linux/qt/x11_screen_capture.h"

#include <cmath>
#include <cstddef>

#include "base/error.h"
#include "platform/linux/qt/qt_screens.h"

namespace ovrin {

namespace {

// Displays are known by their place in the list, which is read anew for every capture.
DisplayId idOf(std::size_t index) {
    return DisplayId{index};
}

PixelRect pixelsOf(const ScreenInfo& screen, const ScreenshotRequest& request) {
    const PixelRect frame = screen.pixelFrame();
    const auto offset = [&screen](double points) { return static_cast<int>(std::lround(points * screen.scaleFactor)); };
    return {frame.x + offset(request.sourceRect.x), frame.y + offset(request.sourceRect.y), request.width,
            request.height};
}

}  // namespace

Task<std::vector<CapturableDisplay>> X11ScreenCapture::displays() {
    std::vector<CapturableDisplay> displays;
    for (const ScreenInfo& screen : screenInfos()) {
        displays.push_back(
            {.id = idOf(displays.size()), .frame = screen.displaySpaceFrame, .scaleFactor = screen.scaleFactor});
    }
    co_return displays;
}

Task<Image> X11ScreenCapture::screenshot(ScreenshotRequest request) {
    const std::vector<ScreenInfo> screens = screenInfos();
    const auto index = static_cast<std::size_t>(request.display);
    if (index >= screens.size()) throw Error("无法截取屏幕：显示器已断开。");
    const PixelRect pixels = pixelsOf(screens[index], request);
    const auto take = [this, pixels](const std::stop_token&) { return screenshot_.take(pixels); };
    Image image = co_await workers_.run(take);
    co_return image;
}

}  // namespace ovrin
