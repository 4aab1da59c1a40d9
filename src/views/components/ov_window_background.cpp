#include "views/components/ov_window_background.h"

#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

OVWindowBackground::OVWindowBackground(ViewEnvironment& environment, double cornerRadius, QWidget* parent)
    : OVWidget(environment, parent), cornerRadius_(cornerRadius) {}

void OVWindowBackground::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QColor page = color(theme::ColorToken::page);
    if (!environment().settings().reducesTransparency) {
        page.setAlphaF(static_cast<float>(theme::windowBackgroundOpacity(environment().settings().appearance)));
    }
    if (cornerRadius_ == 0) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), page);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), cornerRadius_, page);
    QColor line = color(theme::ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.14F : 0.1F);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_ - 0.5, cornerRadius_ - 0.5);
}

}  // namespace ovrin
