// Makes picture files with the window toolkit, which knows the types that programs of the desktop put on the clipboard;
// TIFF, which programs of the other toolkit offer beside them, with the library that decodes pictures.
#pragma once

#include "platform/image_encoder.h"

namespace ovrin {

class QtImageEncoder final : public ImageEncoder {
public:
    bool canEncode(const std::string& type) const override;
    std::vector<std::byte> encode(std::span<const std::byte> picture, const std::string& type) const override;
};

}  // namespace ovrin
