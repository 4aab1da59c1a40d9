#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <allheaders.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "platform/linux/recognition/linux_image_decoder.h"

namespace ovrin {
namespace {

struct PixDeleter {
    void operator()(Pix* picture) const { pixDestroy(&picture); }
};
using PixPointer = std::unique_ptr<Pix, PixDeleter>;

// Left half red, right half blue.
PixPointer twoColors(int width, int height) {
    PixPointer picture(pixCreate(width, height, 32));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            pixSetRGBPixel(picture.get(), x, y, x < width / 2 ? 255 : 0, 0, x < width / 2 ? 0 : 255);
        }
    }
    return picture;
}

std::vector<std::byte> encoded(Pix* picture, int format) {
    l_uint8* data = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(pixWriteMem(&data, &size, picture, format), 0);
    const auto* first = reinterpret_cast<const std::byte*>(data);
    std::vector<std::byte> bytes(first, first + size);
    std::free(data);
    return bytes;
}

std::string failureOf(const std::vector<std::byte>& bytes) {
    try {
        LinuxImageDecoder().decode(bytes);
    } catch (const Error& failure) {
        return failure.errorDescription();
    }
    return "decoded";
}

std::vector<int> pixelAt(const Image& image, int x, int y) {
    const auto* pixel =
        image.data() + static_cast<std::size_t>(y) * image.bytesPerRow() + static_cast<std::size_t>(x) * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

TEST(ImageDecoderTest, DecodesEveryFormat) {
    const PixPointer picture = twoColors(40, 20);
    for (const int format : {IFF_PNG, IFF_JFIF_JPEG, IFF_WEBP, IFF_BMP, IFF_GIF, IFF_TIFF, IFF_TIFF_LZW}) {
        const Image image = LinuxImageDecoder().decode(encoded(picture.get(), format));
        ASSERT_EQ(image.width(), 40) << format;
        ASSERT_EQ(image.height(), 20) << format;
        const auto left = pixelAt(image, 4, 10);
        const auto right = pixelAt(image, 36, 10);
        EXPECT_GT(left[2], 220) << format;
        EXPECT_LT(left[0], 40) << format;
        EXPECT_GT(right[0], 220) << format;
        EXPECT_EQ(right[3], 255) << format;
    }
}

TEST(ImageDecoderTest, LightDrawingsOnTransparencyLieOnBlack) {
    for (const int level : {0, 255}) {
        const PixPointer picture(pixCreate(10, 10, 32));
        const PixPointer alpha(pixCreate(10, 10, 8));
        for (int y = 0; y < 10; ++y) {
            pixSetRGBPixel(picture.get(), 5, y, level, level, level);
            pixSetPixel(alpha.get(), 5, y, 255);
        }
        pixSetRGBComponent(picture.get(), alpha.get(), L_ALPHA_CHANNEL);
        pixSetSpp(picture.get(), 4);
        const Image image = LinuxImageDecoder().decode(encoded(picture.get(), IFF_PNG));
        EXPECT_EQ(pixelAt(image, 1, 5)[0], 255 - level);
        EXPECT_EQ(pixelAt(image, 5, 5)[0], level);
    }
}

// The same JPEG with a note of how the camera was held.
std::vector<std::byte> withOrientation(std::vector<std::byte> jpeg, std::uint8_t orientation) {
    const std::vector<std::uint8_t> note = {0xff, 0xe1, 0, 34, 'E', 'x',         'i', 'f', 0, 0,    'M', 'M',
                                            0,    42,   0, 0,  0,   8,           0,   1,   1, 0x12, 0,   3,
                                            0,    0,    0, 1,  0,   orientation, 0,   0,   0, 0,    0,   0};
    const auto bytes = std::as_bytes(std::span(note));
    jpeg.insert(jpeg.begin() + 2, bytes.begin(), bytes.end());
    return jpeg;
}

TEST(ImageDecoderTest, PhotosAreTurnedAsTheyWereHeld) {
    const auto jpeg = encoded(twoColors(40, 20).get(), IFF_JFIF_JPEG);
    // Where the red half comes to lie, by the eight notes.
    const std::vector<std::string> sides = {"left", "right", "right", "left", "top", "top", "bottom", "bottom"};
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const Image image = LinuxImageDecoder().decode(withOrientation(jpeg, static_cast<std::uint8_t>(i + 1)));
        const bool lies = i < 4;
        ASSERT_EQ(image.width(), lies ? 40 : 20) << i;
        const auto isRed = [&](int x, int y) { return pixelAt(image, x, y)[2] > 200; };
        const bool first = lies ? isRed(4, 10) : isRed(10, 4);
        const bool last = lies ? isRed(36, 10) : isRed(10, 36);
        EXPECT_EQ(first, sides[i] == "left" || sides[i] == "top") << i;
        EXPECT_NE(first, last) << i;
    }
}

TEST(ImageDecoderTest, TransparentPartsLieOnWhite) {
    const PixPointer picture = twoColors(10, 10);
    const PixPointer alpha(pixCreate(10, 10, 8));  // nothing is opaque
    pixSetRGBComponent(picture.get(), alpha.get(), L_ALPHA_CHANNEL);
    pixSetSpp(picture.get(), 4);
    const Image image = LinuxImageDecoder().decode(encoded(picture.get(), IFF_PNG));
    EXPECT_EQ(pixelAt(image, 2, 5), (std::vector<int>{255, 255, 255, 255}));
}

TEST(ImageDecoderTest, DepthsAndPalettesComeOutAsColor) {
    for (const int depth : {1, 2, 4, 8, 16}) {
        const PixPointer picture(pixCreate(16, 16, depth));
        pixSetAll(picture.get());
        const Image image = LinuxImageDecoder().decode(encoded(picture.get(), IFF_PNG));
        // All bits set is black in a picture of one bit and white in the deeper ones.
        EXPECT_EQ(pixelAt(image, 8, 8),
                  (depth == 1 ? std::vector<int>{0, 0, 0, 255} : std::vector<int>{255, 255, 255, 255}))
            << depth;
    }
}

TEST(ImageDecoderTest, NamesWhatIsNoPicture) {
    EXPECT_EQ(failureOf({}), "图片文件是空的。");
    EXPECT_EQ(failureOf(std::vector<std::byte>(5)), "文件不是图片，或是无法识别的图片格式。");
    EXPECT_EQ(failureOf(std::vector<std::byte>(500, std::byte{'a'})), "文件不是图片，或是无法识别的图片格式。");
}

TEST(ImageDecoderTest, RefusesPicturesThatBreakOff) {
    PixPointer picture = twoColors(200, 120);
    for (int i = 0; i < 4000; ++i)
        pixSetRGBPixel(picture.get(), i * 7 % 200, i * 13 % 120, i % 256, i * 3 % 256, i * 5 % 256);
    for (const int format : {IFF_PNG, IFF_JFIF_JPEG, IFF_WEBP, IFF_BMP, IFF_GIF, IFF_TIFF, IFF_TIFF_LZW}) {
        auto bytes = encoded(picture.get(), format);
        bytes.resize(bytes.size() / 2);
        const std::string failure = failureOf(bytes);
        EXPECT_TRUE(failure.starts_with("图片已损坏")) << format << ": " << failure;
    }
}

TEST(ImageDecoderTest, RefusesHugePicturesByTheirHeader) {
    auto bytes = encoded(twoColors(16, 16).get(), IFF_BMP);
    const auto put = [&](std::size_t position, unsigned value) {
        for (std::size_t i = 0; i < 4; ++i) bytes[position + i] = static_cast<std::byte>(value >> (8 * i));
    };
    put(18, 20000);
    put(22, 20000);
    const std::string failure = failureOf(bytes);
    EXPECT_EQ(failure, "图片过大：20000 × 20000 像素，最多支持 12000 万像素。");
}

}  // namespace
}  // namespace ovrin
