#include "views/components/ov_button.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 8;
constexpr double glyphSize = 14;
constexpr double iconGap = 6;
constexpr double iconButtonGlyph = 12;

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto channel = [share](float from, float to) { return from + (to - from) * static_cast<float>(share); };
    return QColor::fromRgbF(channel(a.redF(), b.redF()), channel(a.greenF(), b.greenF()), channel(a.blueF(), b.blueF()),
                            channel(a.alphaF(), b.alphaF()));
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

}  // namespace

OVButtonBase::OVButtonBase(ViewEnvironment& environment, QWidget* parent)
    : QAbstractButton(parent),
      environment_(environment),
      press_(environment, theme::motion::press, [this](double) { update(); }) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    connect(this, &QAbstractButton::pressed, this, [this] { press_.animateTo(1); });
    connect(this, &QAbstractButton::released, this, [this] { press_.animateTo(0); });
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

void OVButtonBase::drawFocusRing(QPainter& painter, double radius, ColorToken color) const {
    if (!hasFocus()) return;
    painter.setPen(QPen(environment_.color(color), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), radius, radius);
}

// Whether Return does that by itself depends on the desktop's style.
void OVButtonBase::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return QAbstractButton::keyPressEvent(event);
    }
    if (!event->isAutoRepeat()) click();
}

void OVButtonBase::enterEvent(QEnterEvent* /*event*/) {
    update();
}

void OVButtonBase::leaveEvent(QEvent* /*event*/) {
    update();
}

OVButton::OVButton(ViewEnvironment& environment, const QString& text, Kind kind, Density density, QWidget* parent)
    : OVButtonBase(environment, parent), kind_(kind), density_(density) {
    setText(text);
    setFont(toQFont(density == Density::compact
                        ? theme::FontStyle{12, theme::FontWeight::medium, theme::FontDesign::standard}
                        : theme::font::bodyMedium));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void OVButton::setOVIcon(std::optional<OVIcon> icon) {
    icon_ = icon;
    updateGeometry();
    update();
}

QSize OVButton::sizeHint() const {
    const double text = QFontMetricsF(font()).horizontalAdvance(this->text());
    const double icon = icon_ ? glyphSize + (this->text().isEmpty() ? 0 : iconGap) : 0;
    return {static_cast<int>(std::ceil(text + icon + 2 * padding())), static_cast<int>(height())};
}

OVButton::Look OVButton::look() const {
    const auto token = [this](ColorToken name) { return environment().color(name); };
    const double press = pressProgress();
    switch (kind_) {
        case Kind::primary: {
            // A faded accent would leave too little contrast to what it says, such as that work is under way.
            if (!isEnabled()) return {token(ColorToken::inset), token(ColorToken::ink3)};
            const QColor fill = token(ColorToken::accent);
            const QColor shade = environment().isDark() ? QColor(Qt::white) : QColor(Qt::black);
            return {mixed(fill, shade, 0.10 * press + (isHovered() ? 0.05 : 0)), token(ColorToken::accentForeground)};
        }
        case Kind::secondary:
            return {mixed(isHovered() ? token(ColorToken::hover) : token(ColorToken::inset), token(ColorToken::hover),
                          press),
                    token(ColorToken::ink)};
        case Kind::ghost:
            return {mixed(withAlpha(token(ColorToken::hover), isHovered() ? 0.6 : 0), token(ColorToken::hover), press),
                    isHovered() ? token(ColorToken::ink) : token(ColorToken::ink2)};
        case Kind::danger: {
            const QColor red = token(ColorToken::red);
            return {withAlpha(red, 0.12 + 0.08 * press + (isHovered() ? 0.05 : 0)), red};
        }
    }
    return {};
}

void OVButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled() && kind_ != Kind::primary) painter.setOpacity(0.45);
    const Look look = this->look();
    const double shrink = 0.6 * pressProgress();
    fillRounded(painter, QRectF(rect()).adjusted(shrink, shrink, -shrink, -shrink), cornerRadius, look.background);

    const QFontMetricsF metrics(font());
    const double textWidth = metrics.horizontalAdvance(text());
    const double iconWidth = icon_ ? glyphSize + (text().isEmpty() ? 0 : iconGap) : 0;
    double x = (width() - textWidth - iconWidth) / 2;
    if (icon_) {
        drawIcon(painter, *icon_, QRectF(x, 0, glyphSize, QWidget::height()), glyphSize, look.text);
        x += iconWidth;
    }
    painter.setPen(look.text);
    painter.setFont(font());
    painter.drawText(QRectF(x, 0, textWidth + 1, QWidget::height()), Qt::AlignVCenter | Qt::AlignLeft, text());
    // On the accent fill a ring of the accent colour would not be seen.
    drawFocusRing(painter, cornerRadius, kind_ == Kind::primary ? ColorToken::accentForeground : ColorToken::accent);
}

OVIconButton::OVIconButton(ViewEnvironment& environment, OVIcon icon, const QString& label, QWidget* parent)
    : OVButtonBase(environment, parent), icon_(icon) {
    setFixedSize(sizeHint());
    setLabel(label);
}

void OVIconButton::setOVIcon(OVIcon icon) {
    icon_ = icon;
    update();
}

void OVIconButton::setLabel(const QString& label) {
    setAccessibleName(label);
    setToolTip(label);
}

void OVIconButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (!isEnabled()) painter.setOpacity(0.4);
    const QColor hover = environment().color(ColorToken::hover);
    const double shown = std::max(pressProgress(), isHovered() || isChecked() ? 0.55 : 0.0);
    fillRounded(painter, rect(), 7, withAlpha(hover, hover.alphaF() * std::clamp(shown, 0.0, 1.0)));
    drawIcon(painter, icon_, rect(), iconButtonGlyph,
             environment().color(isDown() || isHovered() ? ColorToken::ink : ColorToken::ink2));
    drawFocusRing(painter, 7);
}

}  // namespace ovrin
