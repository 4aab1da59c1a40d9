#include "views/components/ov_text_field.h"

#include <QPainter>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double cornerRadius = 9;
constexpr int padding = 10;
constexpr int iconSpace = 26;
constexpr double iconSize = 14;
}  // namespace

OVTextField::OVTextField(ViewEnvironment& environment, const QString& placeholder, QWidget* parent)
    : QLineEdit(parent), environment_(environment) {
    setFrame(false);
    setPlaceholderText(placeholder);
    setAttribute(Qt::WA_MacShowFocusRect, false);
    setFontStyle(theme::font::body);
    setTextMargins(padding, 0, padding, 0);
    applyColors();
    connect(&environment_, &ViewEnvironment::changed, this, &OVTextField::applyColors);
}

void OVTextField::setLeadingIcon(OVIcon icon) {
    icon_ = icon;
    setTextMargins(padding + iconSpace, 0, padding, 0);
    update();
}

void OVTextField::setFontStyle(const theme::FontStyle& style) {
    setFont(toQFont(style));
}

void OVTextField::setBackground(Background background) {
    background_ = background;
    update();
}

QSize OVTextField::sizeHint() const {
    return {QLineEdit::sizeHint().width(), static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 16};
}

void OVTextField::applyColors() {
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, environment_.color(ColorToken::ink));
    colors.setColor(QPalette::PlaceholderText, environment_.color(ColorToken::ink3));
    QColor selection = environment_.color(ColorToken::accent);
    selection.setAlphaF(0.35F);
    colors.setColor(QPalette::Highlight, selection);
    colors.setColor(QPalette::HighlightedText, environment_.color(ColorToken::ink));
    setPalette(colors);
}

void OVTextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (background_ == Background::control) {
            fillRounded(painter, rect(), cornerRadius, environment_.color(ColorToken::inset));
            if (hasFocus()) {
                QColor ring = environment_.color(ColorToken::accent);
                ring.setAlphaF(0.7F);
                painter.setPen(QPen(ring, 1.25));
                painter.setBrush(Qt::NoBrush);
                painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), cornerRadius, cornerRadius);
            }
        }
        if (icon_) {
            drawIcon(painter, *icon_, QRectF(padding, 0, iconSize + 4, height()), iconSize,
                     environment_.color(ColorToken::ink3));
        }
    }
    QLineEdit::paintEvent(event);
}

}  // namespace ovrin
