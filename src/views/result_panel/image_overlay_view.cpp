#include "views/result_panel/image_overlay_view.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <memory>
#include <utility>

#include "views/components/drawing.h"

namespace ovrin {

namespace {

constexpr double scaleStep = 0.05;
// Of a label's font size. The boxes lie tightly around their lines, where the leading of a text would find no room.
constexpr double lineHeight = 1.2;
constexpr double middle = 0.36;  // of its characters above the baseline

QRectF toQRectF(const Rect& rectangle) {
    return {rectangle.x, rectangle.y, rectangle.width, rectangle.height};
}

// The text in a width, at most so many lines; height is what they take.
struct WrappedLabel {
    std::unique_ptr<QTextLayout> layout;
    double height = 0;
    bool isWhole = false;
};

WrappedLabel wrapped(const QString& text, QFont font, double size, double width) {
    font.setPointSizeF(size * 72 / 96);  // between whole pixels too: labels are small
    WrappedLabel label{.layout = std::make_unique<QTextLayout>(text, font)};
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    label.layout->setTextOption(option);
    label.layout->beginLayout();
    int reached = 0;
    for (int i = 0; i < overlay::labelMaximumLines; ++i) {
        QTextLine line = label.layout->createLine();
        if (!line.isValid()) break;
        line.setLineWidth(std::max(width, 1.0));
        line.setPosition({0, label.height + (lineHeight / 2 + middle) * size - line.ascent()});
        label.height += lineHeight * size;
        reached = line.textStart() + line.textLength();
    }
    label.layout->endLayout();
    label.isWhole = reached >= text.size();
    return label;
}

}  // namespace

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
    const Rect picture = overlay::imageRectangle(view, {imageSize().width(), imageSize().height()});
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
    WrappedLabel best;
    for (double scale = 1; scale >= overlay::labelMinimumScale - scaleStep / 2; scale -= scaleStep) {
        best = wrapped(text, font, label.fontSize * scale, room.width());
        if (best.isWhole && best.height <= room.height()) break;
    }
    painter.save();
    painter.setClipRect(frame);
    painter.setPen(Qt::white);
    best.layout->draw(&painter, {room.left(), room.top() + (room.height() - best.height) / 2});
    painter.restore();
}

}  // namespace ovrin
