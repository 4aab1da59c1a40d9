#include "platform/linux/wayland/raw_picture.h"

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr std::uint32_t opaque = 0xFF000000U;

// Where a seen pixel lies in memory: all in bytes from the first one.
struct Walk {
    std::ptrdiff_t start = 0;  // of the seen upper-left corner
    std::ptrdiff_t right = 0;  // to the next seen pixel on the right
    std::ptrdiff_t down = 0;   // to the one below
};

// In memory is what is seen, flipped where the transform says so and then turned counterclockwise by its degrees.
Walk walkOf(const RawPicture& picture) {
    std::ptrdiff_t row = picture.bytesPerRow;
    std::ptrdiff_t upperLeft = 0;
    if (picture.isBottomRowFirst) {
        upperLeft = row * (picture.height - 1);
        row = -row;
    }
    const std::ptrdiff_t pixel = Image::bytesPerPixel;
    const std::ptrdiff_t lastColumn = pixel * (picture.width - 1);
    const std::ptrdiff_t lastRow = row * (picture.height - 1);
    switch (picture.transform) {
        case WL_OUTPUT_TRANSFORM_90:
            return {upperLeft + lastRow, -row, pixel};
        case WL_OUTPUT_TRANSFORM_180:
            return {upperLeft + lastColumn + lastRow, -pixel, -row};
        case WL_OUTPUT_TRANSFORM_270:
            return {upperLeft + lastColumn, row, -pixel};
        case WL_OUTPUT_TRANSFORM_FLIPPED:
            return {upperLeft + lastColumn, -pixel, row};
        case WL_OUTPUT_TRANSFORM_FLIPPED_90:
            return {upperLeft, row, pixel};
        case WL_OUTPUT_TRANSFORM_FLIPPED_180:
            return {upperLeft + lastRow, pixel, -row};
        case WL_OUTPUT_TRANSFORM_FLIPPED_270:
            return {upperLeft + lastColumn + lastRow, -row, -pixel};
        default:
            return {upperLeft, pixel, row};
    }
}

constexpr std::uint32_t exchangeRedAndBlue(std::uint32_t pixel) {
    return (pixel & 0xFF00FF00U) | (pixel & 0xFFU) << 16U | (pixel >> 16U & 0xFFU);
}

// The upper eight of each colour's ten bits.
constexpr std::uint32_t fromTenBits(std::uint32_t pixel) {
    return (pixel >> 22U & 0xFFU) << 16U | (pixel >> 12U & 0xFFU) << 8U | (pixel >> 2U & 0xFFU);
}

template <typename Convert>
void copyRows(const std::uint8_t* source, const Walk& walk, std::uint8_t* target, std::size_t bytesPerRow,
              const PixelRect& area, Convert convert) {
    for (int y = 0; y < area.height; ++y, source += walk.down, target += bytesPerRow) {
        const auto copyPixel = [&](std::ptrdiff_t step, int x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, source + step * x, sizeof pixel);
            pixel = convert(pixel) | opaque;
            std::memcpy(target + static_cast<std::ptrdiff_t>(sizeof pixel) * x, &pixel, sizeof pixel);
        };
        // The compiler makes wide loads and stores of the usual case when it knows the step.
        if (walk.right == Image::bytesPerPixel) {
            for (int x = 0; x < area.width; ++x) copyPixel(Image::bytesPerPixel, x);
        } else {
            for (int x = 0; x < area.width; ++x) copyPixel(walk.right, x);
        }
    }
}

// Calls the function with what makes a pixel of the format one of an Image's, but for its alpha.
template <typename Use>
void withConversionFrom(std::uint32_t format, Use use) {
    switch (format) {
        case WL_SHM_FORMAT_XRGB8888:
        case WL_SHM_FORMAT_ARGB8888:
            return use([](std::uint32_t pixel) { return pixel; });
        case WL_SHM_FORMAT_XBGR8888:
        case WL_SHM_FORMAT_ABGR8888:
            return use(exchangeRedAndBlue);
        case WL_SHM_FORMAT_XRGB2101010:
        case WL_SHM_FORMAT_ARGB2101010:
            return use(fromTenBits);
        case WL_SHM_FORMAT_XBGR2101010:
        case WL_SHM_FORMAT_ABGR2101010:
            return use([](std::uint32_t pixel) { return exchangeRedAndBlue(fromTenBits(pixel)); });
        default:
            throw Error("无法截取屏幕：不支持此显示器的像素格式。");
    }
}

bool isComplete(const RawPicture& picture) {
    return picture.width > 0 && picture.height > 0 && picture.bytesPerRow / Image::bytesPerPixel >= picture.width &&
           picture.bytes.size() / static_cast<std::size_t>(picture.bytesPerRow) >=
               static_cast<std::size_t>(picture.height);
}

}  // namespace

Image visiblePart(const RawPicture& picture, const PixelRect& part) {
    if (!isComplete(picture)) throw Error("无法截取屏幕：桌面没有返回图像。");
    const bool isTurned = picture.transform % 2 == 1;
    const PixelRect whole{0, 0, isTurned ? picture.height : picture.width, isTurned ? picture.width : picture.height};
    const PixelRect area = intersection(part, whole);
    const auto rowBytes = static_cast<std::size_t>(part.width) * Image::bytesPerPixel;
    std::vector<std::uint8_t> pixels(rowBytes * static_cast<std::size_t>(part.height));
    if (area != part) {
        for (std::size_t i = 3; i < pixels.size(); i += Image::bytesPerPixel) pixels[i] = 0xFF;
    }
    const Walk walk = walkOf(picture);
    const std::uint8_t* const source = picture.bytes.data() + walk.start + area.x * walk.right + area.y * walk.down;
    std::uint8_t* const target = pixels.data() + static_cast<std::size_t>(area.y - part.y) * rowBytes +
                                 static_cast<std::size_t>(area.x - part.x) * Image::bytesPerPixel;
    if (!area.isEmpty()) {
        withConversionFrom(picture.format,
                           [&](auto convert) { copyRows(source, walk, target, rowBytes, area, convert); });
    }
    return {part.width, part.height, std::move(pixels)};
}

}  // namespace ovrin
