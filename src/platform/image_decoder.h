// Seam: turns the bytes of a picture file into pixels.
#pragma once

#include <cstddef>
#include <span>

#include "base/image.h"

namespace ovrin {

class ImageDecoder {
public:
    virtual ~ImageDecoder() = default;

    // PNG, JPEG, WebP, BMP, GIF (first frame) and TIFF (first page). Any thread. Throws Error with one line that names
    // the cause: not a picture, damaged or cut short, larger than can be handled.
    virtual Image decode(std::span<const std::byte> bytes) const = 0;
};

}  // namespace ovrin
