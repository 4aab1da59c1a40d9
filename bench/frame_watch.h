// When a part of the screen first looks as it does in the end: seen from outside, by somebody who looks at it as fast
// as it can be read.
#pragma once

#include <chrono>
#include <functional>

#include "desktop/pixel_area.h"
#include "desktop/x11_view.h"

namespace ovrin {

// From the beginning of the action to the first look at the area that is, but for what blinks, as it stays. Throws
// Error when the action changes nothing there.
std::chrono::duration<double, std::milli> timeToComplete(const X11View& view, const PixelArea& area,
                                                         const std::function<void()>& action);

}  // namespace ovrin
