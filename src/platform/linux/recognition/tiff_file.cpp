#include "platform/linux/recognition/tiff_file.h"

#include <memory>

#include <leptonica/allheaders.h>

namespace ovrin {

std::vector<std::byte> tiffFile(std::span<const std::byte> picture) {
    constexpr auto destroy = [](Pix* pixels) { pixDestroy(&pixels); };
    const std::unique_ptr<Pix, decltype(destroy)> pixels(
        pixReadMem(reinterpret_cast<const l_uint8*>(picture.data()), picture.size()));
    if (!pixels) return {};
    l_uint8* data = nullptr;
    std::size_t size = 0;
    const bool isWritten = pixWriteMem(&data, &size, pixels.get(), IFF_TIFF_LZW) == 0;
    const std::unique_ptr<l_uint8, decltype(&lept_free)> file(data, &lept_free);
    if (!isWritten) return {};
    const auto bytes = std::as_bytes(std::span(data, size));
    return {bytes.begin(), bytes.end()};
}

}  // namespace ovrin
