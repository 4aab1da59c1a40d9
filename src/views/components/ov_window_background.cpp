#include "views/components/ov_window_background.h"

#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

OVWindowBackground::OVWindowBackground(ViewEnvironment& environment, double cornerRadius, QWidget* parent)
    : OVWidget(environment, parent), cornerRadius_(cornerRadius) {}

void OVWindowBackground::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawWindowBackground(painter, rect(), cornerRadius_, environment());
}

void drawWindowBackground(QPainter& painter, const QRectF& rectangle, double cornerRadius,
                          const ViewEnvironment& environment) {
    QColor page = environment.color(theme::ColorToken::page);
    if (!environment.settings().reducesTransparency) {
        page.setAlphaF(static_cast<float>(theme::windowBackgroundOpacity(environment.settings().appearance)));
    }
    if (cornerRadius == 0) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rectangle, page);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    // Where nothing blends the corners the window is cut to its shape, and what the cut leaves must be opaque.
    if (!environment.settings().isComposited) painter.fillRect(rectangle, page);
    fillRounded(painter, rectangle, cornerRadius, page);
    QColor line = environment.color(theme::ColorToken::ink);
    line.setAlphaF(environment.isDark() ? 0.14F : 0.1F);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rectangle.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5, cornerRadius - 0.5);
}

}  // namespace ovrin
