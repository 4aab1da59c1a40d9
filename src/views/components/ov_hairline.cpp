#include "views/components/ov_hairline.h"

#include <QPainter>

namespace ovrin {

OVHairline::OVHairline(ViewEnvironment& environment, Opacity opacity) : OVWidget(environment), opacity_(opacity) {
    setFixedHeight(1);
}

void OVHairline::paintEvent(QPaintEvent* /*event*/) {
    QColor line = color(theme::ColorToken::ink);
    line.setAlphaF(environment().isDark() ? opacity_.dark : opacity_.light);
    QPainter(this).fillRect(rect(), line);
}

}  // namespace ovrin
