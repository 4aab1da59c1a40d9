#include "views/components/send_button.h"

#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double glyphSize = 15;
}

SendButton::SendButton(ViewEnvironment& environment, const QString& label, QWidget* parent)
    : OVButtonBase(environment, parent) {
    setFixedSize(sizeHint());
    setAccessibleName(label);
    setToolTip(label);
}

void SendButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double shrink = 1 + pressProgress();
    const QRectF circle = QRectF(rect()).adjusted(shrink, shrink, -shrink, -shrink);
    // Without a question it steps back, but keeps its place.
    QColor ground = environment().color(isEnabled() ? ColorToken::accent : ColorToken::ink);
    if (!isEnabled()) ground.setAlphaF(environment().isDark() ? 0.14F : 0.1F);
    if (isHovered()) ground = environment().isDark() ? ground.lighter(106) : ground.darker(106);
    fillRounded(painter, circle, circle.height() / 2, ground);
    drawIcon(painter, OVIcon::arrowUp, rect(), glyphSize,
             environment().color(isEnabled() ? ColorToken::accentForeground : ColorToken::ink3));
    drawFocusRing(painter, height() / 2.0);
}

}  // namespace ovrin
