#include "views/result_panel/image_overlay_view.h"

#include <QPainter>
#include <utility>

#include "views/components/drawing.h"
#include "views/result_panel/label_text.h"

namespace ovrin {

ImageOverlayView::ImageOverlayView(ViewEnvironment& environment, const Image& image,
                                   std::vector<OCRParagraph> paragraphs, std::string language, QWidget* parent)
    : OVWidget(environment, parent),
      image_(toQImage(image)),
      paragraphs_(std::move(paragraphs)),
      language_(std::move(language)) {
    setAccessibleName(QStringLiteral("原图翻译"));
}

void ImageOverlayView::setTranslatedText(std::string_view translatedText) {
    translatedText_ = translatedText;
    update();
}

QSizeF ImageOverlayView::imageSize() const {
    return QSizeF(image_.size()) / devicePixelRatioF();
}

void ImageOverlayView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), color(theme::ColorToken::page));
    const Size view{static_cast<double>(width()), static_cast<double>(height())};
    const LocalRect picture = overlay::imageRectangle(view, {imageSize().width(), imageSize().height()});
    drawPicture(painter, toQRectF(picture));
    for (const overlay::Label& label : overlay::labels(picture, paragraphs_, translatedText_)) {
        drawLabel(painter, label);
    }
}

void ImageOverlayView::drawPicture(QPainter& painter, const QRectF& place) {
    const QSize pixels = (place.size() * devicePixelRatioF()).toSize();
    if (scaled_.size() != pixels && !image_.isNull()) {
        scaled_ = image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    painter.drawImage(place, scaled_);
}

void ImageOverlayView::drawLabel(QPainter& painter, const overlay::Label& label) const {
    const QRectF frame = toQRectF(label.frame);
    fillRounded(painter, frame, overlay::labelCornerRadius,
                QColor::fromRgbF(0, 0, 0, static_cast<float>(overlay::labelBackgroundOpacity)));
    const QRectF room = frame.adjusted(overlay::labelPadding, 0, -overlay::labelPadding, 0);
    const QString text = toQString(label.text);
    const QFont font = toQFont({label.fontSize, theme::FontWeight::medium, theme::FontDesign::standard}, language_);
    const LabelText words(text, font, label.fontSize, room.size());
    painter.save();
    painter.setClipRect(frame);
    painter.setPen(Qt::white);
    words.draw(painter, {room.left(), room.top() + (room.height() - words.height()) / 2});
    painter.restore();
}

}  // namespace ovrin
