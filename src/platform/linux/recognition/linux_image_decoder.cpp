#include "platform/linux/recognition/linux_image_decoder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
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
            throw Error("文件不是图片，或是无法识别的图片格式。");
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
                throw Error("图片已损坏：无法读取文件头。");
    }
    return header;
}

void checkSize(const Header& header) {
    if (header.width <= 0 || header.height <= 0) throw Error("图片已损坏：图片没有面积。");
    const long long pixels = static_cast<long long>(header.width) * header.height;
    if (header.width > LinuxImageDecoder::maximumSide || header.height > LinuxImageDecoder::maximumSide ||
        pixels > LinuxImageDecoder::maximumPixels) {
        throw Error("图片过大：" + std::to_string(header.width) + " × " + std::to_string(header.height) +
                    " 像素，最多支持 " + std::to_string(LinuxImageDecoder::maximumPixels / 10'000) + " 万像素。");
    }
}

// Is what borders on the transparent parts rather light? Text drawn there would be lost on white.
bool isLightOnTransparency(Pix* picture) {
    const auto width = static_cast<std::ptrdiff_t>(pixGetWidth(picture));
    const auto height = static_cast<std::ptrdiff_t>(pixGetHeight(picture));
    const auto wordsPerLine = static_cast<std::ptrdiff_t>(pixGetWpl(picture));
    const l_uint32* pixels = pixGetData(picture);
    const auto isOpaque = [](l_uint32 pixel) { return (pixel >> L_ALPHA_SHIFT & 0xffU) >= 128; };
    double light = 0, count = 0;
    for (std::ptrdiff_t y = 1; y + 1 < height; ++y) {
        for (std::ptrdiff_t x = 1; x + 1 < width; ++x) {
            const l_uint32* pixel = pixels + y * wordsPerLine + x;
            if (!isOpaque(*pixel)) continue;
            if (isOpaque(pixel[-1]) && isOpaque(pixel[1]) && isOpaque(pixel[-wordsPerLine]) &&
                isOpaque(pixel[wordsPerLine]))
                continue;
            light += 0.30 * (*pixel >> L_RED_SHIFT & 0xffU) + 0.59 * (*pixel >> L_GREEN_SHIFT & 0xffU) +
                     0.11 * (*pixel >> L_BLUE_SHIFT & 0xffU);
            ++count;
        }
    }
    return count > 0 && light / count > 128;
}

// What a camera wrote about how it was held: the block of tags in the file, empty where there is none.
std::span<const l_uint8> cameraTags(std::span<const l_uint8> file, l_int32 format) {
    constexpr std::array<l_uint8, 6> mark = {'E', 'x', 'i', 'f', 0, 0};
    if (format == IFF_JFIF_JPEG) {
        for (std::size_t at = 2; at + 4 <= file.size() && file[at] == 0xff && file[at + 1] != 0xda;) {
            const std::size_t length = static_cast<std::size_t>(file[at + 2]) << 8 | file[at + 3];
            if (length < 2 || at + 2 + length > file.size()) break;
            const auto segment = file.subspan(at + 4, length - 2);
            if (file[at + 1] == 0xe1 && segment.size() > mark.size() &&
                std::equal(mark.begin(), mark.end(), segment.begin()))
                return segment.subspan(mark.size());
            at += 2 + length;
        }
    }
    // Both other formats keep it in a chunk of its own, whose length stands before its name or behind it.
    const std::string_view name = format == IFF_PNG ? "eXIf" : "EXIF";
    if (format != IFF_PNG && format != IFF_WEBP) return {};
    const auto found = std::search(file.begin(), file.end(), name.begin(), name.end());
    const auto at = static_cast<std::size_t>(found - file.begin());
    if (at < 4 || at + 8 > file.size()) return {};
    const auto body = file.subspan(format == IFF_PNG ? at + 4 : at + 8);
    return std::equal(mark.begin(), mark.end(), body.begin(),
                      body.begin() + static_cast<std::ptrdiff_t>(std::min(mark.size(), body.size())))
               ? body.subspan(mark.size())
               : body;
}

// 1 (upright) to 8, as cameras number them.
int orientationOf(std::span<const l_uint8> tags) {
    constexpr int upright = 1;
    constexpr unsigned orientationTag = 0x0112;
    if (tags.size() < 14 || (tags[0] != 'I' && tags[0] != 'M')) return upright;
    const bool littleEndian = tags[0] == 'I';
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i) value = value << 8 | tags[littleEndian ? at + bytes - 1 - i : at + i];
        return value;
    };
    const std::size_t directory = number(4, 4);
    if (directory > tags.size() - 2) return upright;
    const std::size_t entries = number(directory, 2);
    for (std::size_t i = 0, at = directory + 2; i < entries && at + 12 <= tags.size(); ++i, at += 12) {
        if (number(at, 2) != orientationTag) continue;
        const auto value = static_cast<int>(number(at + 8, 2));
        return value >= 1 && value <= 8 ? value : upright;
    }
    return upright;
}

PixPointer turnedUpright(PixPointer picture, int orientation) {
    const bool mirrored = orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
    constexpr std::array<int, 9> quarters = {0, 0, 0, 2, 2, 3, 1, 1, 3};  // clockwise, of the mirrored picture
    if (mirrored) picture.reset(pixFlipLR(nullptr, picture.get()));
    const int turns = quarters[static_cast<std::size_t>(orientation)];
    if (picture && turns != 0) picture.reset(pixRotateOrth(picture.get(), turns));
    return picture;
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
    if (picture && pixGetSpp(picture.get()) == 4)
        picture.reset(pixAlphaBlendUniform(picture.get(), isLightOnTransparency(picture.get()) ? 0 : 0xffffff00));
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
    if (bytes.empty()) throw Error("图片文件是空的。");
    if (bytes.size() < shortestHeader) throw Error("文件不是图片，或是无法识别的图片格式。");
    const auto* data = reinterpret_cast<const l_uint8*>(bytes.data());
    const Header header = readHeader(data, bytes.size());
    checkSize(header);
    PixPointer picture;
    if (isWhole(data, bytes.size(), header.format)) picture.reset(pixReadMem(data, bytes.size()));
    if (!picture) throw Error("图片已损坏或不完整。");
    picture = asOpaqueColor(std::move(picture));
    if (picture)
        picture = turnedUpright(std::move(picture), orientationOf(cameraTags({data, bytes.size()}, header.format)));
    if (!picture) throw Error("内存不足，无法打开图片。");
    return toImage(picture);
}

}  // namespace ovrin
