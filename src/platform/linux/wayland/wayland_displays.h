// The compositor's outputs as displays that pictures are taken of.
#pragma once

#include <vector>

#include "base/geometry.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/screen_capture.h"

namespace ovrin {

// The displays in the order in which the compositor lists its outputs, the first counting as the primary one. An output
// keeps its id for every connection.
std::vector<CapturableDisplay> displaysOf(const WaylandConnection& connection);

// Throws Error when the display has been unplugged.
const WaylandOutput& outputOf(const WaylandConnection& connection, DisplayId display);

// Whole points from an output's upper-left corner, y downwards.
struct OutputPoints {
    using Number = int;
};

// Compositors take whole points only. Where a point is not a whole number of pixels each rounds in a way of its own,
// and sway 1.7 takes the wrong part of an output that is turned by 90 degrees: there the picture is asked of the whole
// output.
struct PictureArea {
    Rect<OutputPoints> points;  // what to ask for
    bool isWholeOutput = false;
    PixelRect pixels;  // what was meant, in pixels of that picture as it is seen
};
PictureArea pictureAreaOf(const WaylandOutput& output, const ScreenshotRequest& request);

}  // namespace ovrin
