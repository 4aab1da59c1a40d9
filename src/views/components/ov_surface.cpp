#include "views/components/ov_surface.h"

#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

namespace {

struct Shadow {
    double opacity;  // of black
    double blur;     // points
    double offset;   // points downwards
};

constexpr Shadow elevatedDark{0.24, 18, 5};
constexpr Shadow elevatedLight{0.08, 10, 2};

}  // namespace

OVSurface::OVSurface(ViewEnvironment& environment, double radius, Elevation elevation, QWidget* parent)
    : OVWidget(environment, parent), radius_(radius), elevation_(elevation) {
    const int margin = shadowMargin();
    setContentsMargins(margin, margin, margin, margin);
}

int OVSurface::shadowMargin() const {
    return elevation_ == Elevation::elevated ? static_cast<int>(elevatedDark.blur) : 0;
}

void OVSurface::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int margin = shadowMargin();
    const QRectF card = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    if (elevation_ == Elevation::elevated) {
        const Shadow& shadow = environment().isDark() ? elevatedDark : elevatedLight;
        drawShadow(painter, card, radius_, shadow.blur, shadow.offset,
                   QColor::fromRgbF(0, 0, 0, static_cast<float>(shadow.opacity)));
    }
    fillRounded(painter, card, radius_, color(theme::ColorToken::canvas));
    // A hairline keeps the card apart from the page where neither shadow nor blur does.
    QColor line = color(theme::ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.08F : 0.06F);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), radius_ - 0.5, radius_ - 0.5);
}

}  // namespace ovrin
