// A picture as a compositor hands it out, and what is seen of it.
#pragma once

#include <cstdint>
#include <span>

#include <wayland-client-protocol.h>

#include "base/geometry.h"
#include "base/image.h"

namespace ovrin {

struct RawPicture {
    std::span<const std::uint8_t> bytes;  // rows of 32-bit pixels
    int width = 0;                        // pixels, as they lie in memory
    int height = 0;
    int bytesPerRow = 0;
    std::uint32_t format = WL_SHM_FORMAT_XRGB8888;
    int transform = WL_OUTPUT_TRANSFORM_NORMAL;  // of the output that it is of
    bool isBottomRowFirst = false;
};

// Cuts the part out, in pixels of the picture as it is seen, opaque; what lies outside of the picture is black. Throws
// Error when the format is none of XRGB, ARGB, XBGR and ABGR with 8 bits or with 10 (and 2 of alpha) a colour, or when
// there are too few bytes.
Image visiblePart(const RawPicture& picture, const PixelRect& part);

}  // namespace ovrin
