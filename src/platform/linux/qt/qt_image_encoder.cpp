#include "platform/linux/qt/qt_image_encoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>
#include <QList>
#include <array>
#include <utility>

#include "platform/linux/recognition/tiff_file.h"

namespace ovrin {

namespace {

// Names that programs use beside those that the toolkit knows.
constexpr std::array<std::pair<const char*, const char*>, 10> otherNames{{{"application/x-qt-image", "png"},
                                                                          {"PIXMAP", "ppm"},
                                                                          {"BITMAP", "pbm"},
                                                                          {"image/jpg", "jpeg"},
                                                                          {"image/x-bmp", "bmp"},
                                                                          {"image/x-MS-bmp", "bmp"},
                                                                          {"image/x-ico", "ico"},
                                                                          {"image/x-icon", "ico"},
                                                                          {"image/icon", "ico"},
                                                                          {"image/x-win-bitmap", "ico"}}};

// The toolkit's own name of the type; empty when it cannot write it. Its programs offer a picture as "image/" and that
// name.
QByteArray formatOf(const std::string& type) {
    for (const auto& [name, format] : otherNames) {
        if (type == name) return format;
    }
    const QByteArray name = QByteArray::fromStdString(type);
    const QList<QByteArray> formats = QImageWriter::imageFormatsForMimeType(name);
    if (!formats.isEmpty()) return formats.first();
    const QByteArray format = name.startsWith("image/") ? name.mid(6) : QByteArray();
    return QImageWriter::supportedImageFormats().contains(format) ? format : QByteArray();
}

bool isTiff(const std::string& type) {
    return type == "image/tiff";
}

}  // namespace

bool QtImageEncoder::canEncode(const std::string& type) const {
    return isTiff(type) || !formatOf(type).isEmpty();
}

std::vector<std::byte> QtImageEncoder::encode(std::span<const std::byte> picture, const std::string& type) const {
    if (isTiff(type)) return tiffFile(picture);
    const auto image =
        QImage::fromData(reinterpret_cast<const uchar*>(picture.data()), static_cast<int>(picture.size()));
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    if (image.isNull() || !QImageWriter(&buffer, formatOf(type)).write(image)) return {};
    const auto bytes = std::as_bytes(std::span(file));
    return {bytes.begin(), bytes.end()};
}

}  // namespace ovrin
