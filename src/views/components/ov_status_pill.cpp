#include "views/components/ov_status_pill.h"

#include <QPainter>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double dotSize = 6;
constexpr double gap = 6;
constexpr double padding = 9;
constexpr int pillHeight = 22;

const theme::FontStyle pillFont{11, theme::FontWeight::medium, theme::FontDesign::standard};

ColorToken colorOf(OVStatusPill::Kind kind) {
    switch (kind) {
        case OVStatusPill::Kind::neutral:
            return ColorToken::ink3;
        case OVStatusPill::Kind::active:
            return ColorToken::accentInk;
        case OVStatusPill::Kind::success:
            return ColorToken::green;
        case OVStatusPill::Kind::warning:
            return ColorToken::orange;
        case OVStatusPill::Kind::error:
            return ColorToken::red;
    }
    return ColorToken::ink3;
}

}  // namespace

OVStatusPill::OVStatusPill(ViewEnvironment& environment, const QString& text, Kind kind, QWidget* parent)
    : OVWidget(environment, parent), kind_(kind) {
    setAccessibleRole(QAccessible::StaticText);
    setFont(toQFont(pillFont));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    set(text, kind);
}

void OVStatusPill::set(const QString& text, Kind kind) {
    text_ = text;
    kind_ = kind;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize OVStatusPill::sizeHint() const {
    const double text = QFontMetricsF(font()).horizontalAdvance(text_);
    return {static_cast<int>(std::ceil(padding + dotSize + gap + text + padding)), pillHeight};
}

void OVStatusPill::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor tone = color(colorOf(kind_));
    QColor background = kind_ == Kind::neutral ? color(ColorToken::inset) : tone;
    if (kind_ != Kind::neutral) background.setAlphaF(environment().isDark() ? 0.18F : 0.12F);
    fillRounded(painter, rect(), height() / 2.0, background);
    fillRounded(painter, QRectF(padding, (height() - dotSize) / 2, dotSize, dotSize), dotSize / 2, tone);
    painter.setPen(kind_ == Kind::neutral ? color(ColorToken::ink2) : tone);
    painter.setFont(font());
    painter.drawText(QRectF(padding + dotSize + gap, 0, width(), height()), Qt::AlignVCenter | Qt::AlignLeft, text_);
}

}  // namespace ovrin
