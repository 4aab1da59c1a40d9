#include "platform/linux/image_decoder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <leptonica/allheaders.h>

#include "base/error.h"

namespace ovrin {
namespace {

struct PixDeleter {
    void operator()(Pix* picture) const { pixDestroy(&picture); }
};
using PixPointer = std::unique_ptr<Pix, PixDeleter>;

struct Header {
    l_int32 format = IFF_UNKNOWN;
    l_int32 width = 0;
    l_int32 height = 0;
};

l_int32 littleEndian32(const l_uint8* data) {
    return static_cast<l_int32>(static_cast<l_uint32>(data[0]) | static_cast<l_uint32>(data[1]) << 8 |
                                static_cast<l_uint32>(data[2]) << 16 | static_cast<l_uint32>(data[3]) << 24);
}

l_uint32 bigEndian32(const l_uint8* data) {
    return static_cast<l_uint32>(data[0]) << 24 | static_cast<l_uint32>(data[1]) << 16 |
           static_cast<l_uint32>(data[2]) << 8 | static_cast<l_uint32>(data[3]);
}

// Does the file go on to its own end? The libraries below Leptonica write to standard error when they find out.
bool isWhole(const l_uint8* data, std::size_t size, l_int32 format) {
    if (format == IFF_PNG) {
        constexpr std::size_t signature = 8;
        constexpr std::size_t chunkFrame = 12;  // length, name and checksum
        for (std::size_t position = signature; position + chunkFrame <= size;) {
            const std::size_t length = bigEndian32(data + position);
            if (length > size - position - chunkFrame) return false;
            if (std::equal(data + position + 4, data + position + 8, "IEND")) return true;
            position += chunkFrame + length;
        }
        return false;
    }
    if (format == IFF_JFIF_JPEG) {
        constexpr std::array<l_uint8, 2> endOfImage = {0xff, 0xd9};
        return std::find_end(data, data + size, endOfImage.begin(), endOfImage.end()) != data + size;
    }
    return true;
}

Header readHeader(const l_uint8* data, std::size_t size) {
    Header header;
    if (findFileFormatBuffer(data, &header.format) != 0) header.format = IFF_UNKNOWN;
    switch (header.format) {
        case IFF_UNKNOWN:
            throw Error("The file is not a picture, or of a kind that can't be read.");
        case IFF_GIF:  // not covered by Leptonica's header reader: little-endian sides follow the six-byte signature
            header.width = data[6] | data[7] << 8;
            header.height = data[8] | data[9] << 8;
            break;
        case IFF_BMP:  // Leptonica compares it with the file's size first; rows may run upwards or downwards
            if (size >= 26) {
                header.width = littleEndian32(data + 18);
                header.height = std::abs(littleEndian32(data + 22));
            }
            break;
        default:
            if (pixReadHeaderMem(data, size, nullptr, &header.width, &header.height, nullptr, nullptr, nullptr) != 0)
                throw Error("The picture is damaged: its header can't be read.");
    }
    return header;
}

void checkSize(const Header& header) {
    if (header.width <= 0 || header.height <= 0) throw Error("The picture is damaged: it has no area.");
    const long long pixels = static_cast<long long>(header.width) * header.height;
    if (header.width > LinuxImageDecoder::maximumSide || header.height > LinuxImageDecoder::maximumSide ||
        pixels > LinuxImageDecoder::maximumPixels) {
        throw Error("The picture is too large: " + std::to_string(header.width) + " x " +
                    std::to_string(header.height) + " pixels, at most " +
                    std::to_string(LinuxImageDecoder::maximumPixels / 1'000'000) + " million can be handled.");
    }
}

// Any depth, with or without palette and transparency, as opaque 32-bit pixels.
PixPointer asOpaqueColor(PixPointer picture) {
    PixColormap* palette = pixGetColormap(picture.get());
    if (palette != nullptr) {
        l_int32 opaque = 1;
        pixcmapIsOpaque(palette, &opaque);
        picture.reset(
            pixRemoveColormap(picture.get(), opaque != 0 ? REMOVE_CMAP_TO_FULL_COLOR : REMOVE_CMAP_WITH_ALPHA));
    }
    if (picture && pixGetDepth(picture.get()) != 32) picture.reset(pixConvertTo32(picture.get()));
    if (picture && pixGetSpp(picture.get()) == 4) picture.reset(pixAlphaBlendUniform(picture.get(), 0xffffff00));
    return picture;
}

Image toImage(const PixPointer& picture) {
    const int width = pixGetWidth(picture.get());
    const int height = pixGetHeight(picture.get());
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                                     Image::bytesPerPixel);
    const l_uint32* row = pixGetData(picture.get());
    auto* target = pixels.data();
    for (int y = 0; y < height; ++y, row += pixGetWpl(picture.get())) {
        for (int x = 0; x < width; ++x, target += Image::bytesPerPixel) {
            target[0] = static_cast<std::uint8_t>(row[x] >> L_BLUE_SHIFT);
            target[1] = static_cast<std::uint8_t>(row[x] >> L_GREEN_SHIFT);
            target[2] = static_cast<std::uint8_t>(row[x] >> L_RED_SHIFT);
            target[3] = 255;
        }
    }
    return {width, height, std::move(pixels)};
}

}  // namespace

LinuxImageDecoder::LinuxImageDecoder() {
    setMsgSeverity(L_SEVERITY_NONE);
    leptSetStderrHandler([](const char*) {});
}

Image LinuxImageDecoder::decode(std::span<const std::byte> bytes) const {
    constexpr std::size_t shortestHeader = 12;  // what the format is told by
    if (bytes.empty()) throw Error("The picture is empty.");
    if (bytes.size() < shortestHeader) throw Error("The file is not a picture, or of a kind that can't be read.");
    const auto* data = reinterpret_cast<const l_uint8*>(bytes.data());
    const Header header = readHeader(data, bytes.size());
    checkSize(header);
    PixPointer picture;
    if (isWhole(data, bytes.size(), header.format)) picture.reset(pixReadMem(data, bytes.size()));
    if (!picture) throw Error("The picture is damaged or cut short.");
    picture = asOpaqueColor(std::move(picture));
    if (!picture) throw Error("There is not enough memory for the picture.");
    return toImage(picture);
}

}  // namespace ovrin
