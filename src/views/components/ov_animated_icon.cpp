#include "views/components/ov_animated_icon.h"

#include <QPainter>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

OVAnimatedIcon::OVAnimatedIcon(ViewEnvironment& environment, OVIcon icon, double size, theme::ColorToken color,
                               Hover hover, QWidget* parent)
    : OVWidget(environment, parent),
      icon_(icon),
      size_(size),
      color_(color),
      hover_(hover),
      motion_(environment, theme::motion::iconHover, [this](double) { update(); }) {
    setFixedSize(sizeHint());
}

void OVAnimatedIcon::setIcon(OVIcon icon) {
    icon_ = icon;
    update();
}

void OVAnimatedIcon::setColor(theme::ColorToken color) {
    color_ = color;
    update();
}

QSize OVAnimatedIcon::sizeHint() const {
    // Room for the glyph at its largest.
    const int side = static_cast<int>(std::ceil(size_ * 1.2));
    return {side, side};
}

void OVAnimatedIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF bounds = rect();
    if (motion_.value() != 0) {
        painter.translate(bounds.center());
        painter.scale(1 + 0.12 * motion_.value(), 1 + 0.12 * motion_.value());
        painter.rotate(-6 * motion_.value());
        painter.translate(-bounds.center());
    }
    drawIcon(painter, icon_, bounds, size_, color(color_));
}

void OVAnimatedIcon::enterEvent(QEnterEvent* /*event*/) {
    if (hover_ == Hover::animates) motion_.animateTo(1);
}

void OVAnimatedIcon::leaveEvent(QEvent* /*event*/) {
    if (hover_ == Hover::animates) motion_.animateTo(0);
}

}  // namespace ovrin
