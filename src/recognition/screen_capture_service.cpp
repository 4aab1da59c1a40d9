#include "recognition/screen_capture_service.h"

#include <algorithm>
#include <vector>

#include "recognition/ocr_engine_error.h"

namespace ovrin {

namespace {

constexpr double smallestSide = 2;      // points
constexpr int smallestPictureSide = 2;  // pixels

Rect intersection(const Rect& first, const Rect& second) {
    const double left = std::max(first.x, second.x);
    const double top = std::max(first.y, second.y);
    const double right = std::min(first.x + first.width, second.x + second.width);
    const double bottom = std::min(first.y + first.height, second.y + second.height);
    return {left, top, std::max(right - left, 0.0), std::max(bottom - top, 0.0)};
}

bool isEmpty(const Rect& rect) {
    return rect.width <= 0 || rect.height <= 0;
}

int pixels(double points, double scaleFactor) {
    return std::max(smallestPictureSide, static_cast<int>(points * scaleFactor));
}

}  // namespace

Task<Image> ScreenCaptureService::capture(Rect rect) {
    if (rect.width < smallestSide || rect.height < smallestSide) throw OCREngineError::invalidImage();
    const std::vector<CapturableDisplay> displays = co_await screen_.displays();
    const auto display = std::find_if(displays.begin(), displays.end(), [&rect](const CapturableDisplay& candidate) {
        return !isEmpty(intersection(candidate.frame, rect));
    });
    if (display == displays.end()) throw OCREngineError::invalidImage();

    const Rect part = intersection(rect, display->frame);
    const ScreenshotRequest request{
        .display = display->id,
        .sourceRect = {part.x - display->frame.x, part.y - display->frame.y, part.width, part.height},
        .width = pixels(part.width, display->scaleFactor),
        .height = pixels(part.height, display->scaleFactor)};
    Image picture = co_await screen_.screenshot(request);
    co_return picture;
}

}  // namespace ovrin
