// Seam: turns a picture file into one of another type.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace ovrin {

// Any thread.
class ImageEncoder {
public:
    virtual ~ImageEncoder() = default;

    // type: as it stands on a clipboard, mostly a MIME type.
    virtual bool canEncode(const std::string& type) const = 0;

    // May take seconds. Empty when the bytes are no picture that can be read, or it does not fit into the type.
    virtual std::vector<std::byte> encode(std::span<const std::byte> picture, const std::string& type) const = 0;
};

}  // namespace ovrin
