#include "platform/linux/qt/qt_image_encoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>

#include <gtest/gtest.h>

#include "platform/linux/recognition/linux_image_decoder.h"

namespace ovrin {
namespace {

TEST(QtImageEncoderTest, MakesWhatProgramsOfferUnderTheNamesTheyUse) {
    QImage drawn(20, 10, QImage::Format_RGB32);
    drawn.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    drawn.save(&buffer, "PNG");
    const auto bytes = std::as_bytes(std::span(png));

    const QtImageEncoder encoder;
    for (const char* const type : {"application/x-qt-image", "image/png", "image/bmp", "image/x-MS-bmp", "image/jpg",
                                   "image/vnd.microsoft.icon", "image/x-icon", "image/ppm", "PIXMAP", "image/xpm"}) {
        EXPECT_TRUE(encoder.canEncode(type)) << type;
        const std::vector<std::byte> made = encoder.encode(bytes, type);
        const auto read = QImage::fromData(reinterpret_cast<const uchar*>(made.data()), static_cast<int>(made.size()));
        EXPECT_EQ(read.size(), drawn.size()) << type;
        EXPECT_TRUE(encoder.encode(bytes.first(40), type).empty()) << type;
    }
    const LinuxImageDecoder decoder;  // the toolkit may not read TIFF
    const Image tiff = decoder.decode(encoder.encode(bytes, "image/tiff"));
    EXPECT_EQ(tiff.width(), 20);
    EXPECT_EQ(tiff.data()[2], 255);  // blue, green, red
    EXPECT_TRUE(encoder.encode(bytes.first(40), "image/tiff").empty());
    for (const char* const type : {"image/svg+xml", "text/plain", "png", ""}) EXPECT_FALSE(encoder.canEncode(type));
}

}  // namespace
}  // namespace ovrin
