// Seam: the displays of the desktop and pictures of what is on them.
#pragma once

#include <cstdint>
#include <vector>

#include "base/geometry.h"
#include "base/image.h"
#include "base/task.h"

namespace ovrin {

enum class DisplayId : std::uint64_t {};

struct CapturableDisplay {
    DisplayId id{};
    DisplayRect frame;
    double scaleFactor = 1;  // device pixels per point
};

struct ScreenshotRequest {
    DisplayId display{};
    LocalRect sourceRect;  // points of the display
    int width = 0;         // pixels of the picture
    int height = 0;        // pixels of the picture
};

class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    // Whether the program may see the screen. Main thread.
    virtual bool preflightAccess() = 0;

    // Asks the user to let the program see the screen where it may not; gives their answer. Throws Error where nobody
    // can be asked.
    virtual Task<bool> requestAccess() = 0;

    // The displays in the order the system lists them. Throws Error.
    virtual Task<std::vector<CapturableDisplay>> displays() = 0;

    // Makes ready for the screenshot that will be asked for next, as far as that can be done before. Main thread.
    virtual void prepare(const ScreenshotRequest& request) = 0;

    // One picture of what is on the display now, every window included and the pointer not. The wait for it does not
    // block the awaiting loop. Throws Error, and CancellationError when the user turns the system's question down.
    virtual Task<Image> screenshot(ScreenshotRequest request) = 0;
};

}  // namespace ovrin
