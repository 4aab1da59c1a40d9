#include "views/components/ov_text_field.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <cmath>

#include "views/components/drawing.h"
#include "views/components/edit_menu.h"

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

void OVTextField::setRightInset(int points) {
    QMargins margins = textMargins();
    margins.setRight(points);
    setTextMargins(margins);
}

QSize OVTextField::sizeHint() const {
    return {QLineEdit::sizeHint().width(), static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 16};
}

void OVTextField::applyColors() {
    setPalette(fieldPalette(palette(), environment_));
}

void OVTextField::contextMenuEvent(QContextMenuEvent* event) {
    showEditMenu(environment_, *this, event->globalPos());
}

void OVTextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!isEnabled()) painter.setOpacity(0.6);
        if (background_ == Background::control) {
            drawFieldGround(painter, rect(), cornerRadius, hasFocus(), environment_);
        }
        if (icon_) {
            drawIcon(painter, *icon_, QRectF(padding, 0, iconSize + 4, height()), iconSize,
                     environment_.color(ColorToken::ink3));
        }
    }
    QLineEdit::paintEvent(event);
}

}  // namespace ovrin
