#include "views/components/ov_brand_mark.h"

#include <QPainter>
#include <QSvgRenderer>

#include "views/application/qt_application_icon.h"

namespace ovrin {

namespace {
constexpr double pictureSide = 256;
constexpr double pictureMargin = 16;
}  // namespace

OVBrandMark::OVBrandMark(ViewEnvironment& environment, double size, const Published<std::string>& image,
                         QWidget* parent)
    : OVWidget(environment, parent),
      size_(size),
      image_(image),
      changes_(image.onDidChange([this](const std::string& /*asset*/) { update(); })) {
    setFixedSize(sizeHint());
}

QSize OVBrandMark::sizeHint() const {
    return QSizeF(size_, size_).toSize();
}

void OVBrandMark::paintEvent(QPaintEvent* /*event*/) {
    // The tile of the picture, without the margin that it keeps elsewhere, fills the mark.
    const double margin = size_ * pictureMargin / (pictureSide - 2 * pictureMargin);
    const QRectF picture = QRectF(0, 0, size_, size_).adjusted(-margin, -margin, margin, margin);
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QSvgRenderer(QtApplicationIcon::file(image_.value())).render(&painter, picture);
}

}  // namespace ovrin
