#include "recognition/screen_capture_service.h"

#include <algorithm>
#include <vector>

#include "recognition/ocr_engine_error.h"

namespace ovrin {

namespace {

constexpr double smallestSide = 2;      // points
constexpr int smallestPictureSide = 2;  // pixels

int pixels(double points, double scaleFactor) {
    return std::max(smallestPictureSide, static_cast<int>(points * scaleFactor));
}

}  // namespace

Task<Image> ScreenCaptureService::capture(DisplayRect rect) {
    const ScreenshotRequest request = co_await prepare(rect);
    Image picture = co_await screen_.screenshot(request);
    co_return picture;
}

Task<ScreenshotRequest> ScreenCaptureService::prepare(DisplayRect rect) {
    if (rect.width < smallestSide || rect.height < smallestSide) throw OCREngineError::invalidImage();
    const std::vector<CapturableDisplay> displays = co_await screen_.displays();
    const auto display = std::find_if(displays.begin(), displays.end(), [&rect](const CapturableDisplay& candidate) {
        return !intersection(candidate.frame, rect).isEmpty();
    });
    if (display == displays.end()) throw OCREngineError::invalidImage();

    const DisplayRect part = intersection(rect, display->frame);
    const ScreenshotRequest request{.display = display->id,
                                    .sourceRect = toLocalSpace(part, display->frame),
                                    .width = pixels(part.width, display->scaleFactor),
                                    .height = pixels(part.height, display->scaleFactor)};
    screen_.prepare(request);
    co_return request;
}

}  // namespace ovrin
