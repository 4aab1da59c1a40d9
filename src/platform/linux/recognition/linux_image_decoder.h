// Decodes picture files with Leptonica: PNG, JPEG, WebP, BMP, GIF (first frame) and TIFF (first page).
#pragma once

#include "platform/image_decoder.h"

namespace ovrin {

class LinuxImageDecoder : public ImageDecoder {
public:
    // Sides and area beyond these are refused by the file's header, before a pixel is decoded.
    static constexpr int maximumSide = 32767;
    static constexpr long long maximumPixels = 120'000'000;

    // Leptonica writes its complaints to standard error unless told not to, process-wide.
    LinuxImageDecoder();

    // Transparent parts come out as if they lay on white paper, or on black where what is drawn on them is light, so
    // that text on them stays readable. A photo is turned as its camera noted that it was held.
    Image decode(std::span<const std::byte> bytes) const override;
};

}  // namespace ovrin
