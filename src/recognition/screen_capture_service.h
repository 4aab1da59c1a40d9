// Takes the picture of a rectangle of the screen at the pixel density of the display it lies on.
#pragma once

#include "base/geometry.h"
#include "base/image.h"
#include "base/task.h"
#include "platform/screen_capture.h"

namespace ovrin {

class ScreenCaptureService {
public:
    // The screen has to outlive the service.
    explicit ScreenCaptureService(ScreenCapture& screen) : screen_(screen) {}

    // Where the rectangle spans displays, only its part on the first listed display that it touches is captured.
    // Throws OCREngineError::invalidImage for less than 2 points either way and for a rectangle on no display; failures
    // of the platform come through unchanged.
    Task<Image> capture(DisplayRect rect);

    // The same in two steps, for when there is time before the picture is to be taken: what to ask the screen for,
    // which gets ready for it.
    Task<ScreenshotRequest> prepare(DisplayRect rect);
    Task<Image> capture(ScreenshotRequest request) { return screen_.screenshot(request); }

private:
    ScreenCapture& screen_;
};

}  // namespace ovrin
