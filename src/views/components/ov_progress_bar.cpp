#include "views/components/ov_progress_bar.h"

#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int steps = 1000;
}

OVProgressBar::OVProgressBar(ViewEnvironment& environment, const QString& label, QWidget* parent)
    : QProgressBar(parent), environment_(environment) {
    setRange(0, steps);
    setTextVisible(false);
    setAccessibleName(label);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

void OVProgressBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = rect();
    const double radius = track.height() / 2;
    fillRounded(painter, track, radius, environment_.color(ColorToken::hover));
    const double filled = track.width() * value() / steps;
    // Less than a circle would not have the shape of the track.
    if (value() > 0) {
        fillRounded(painter, {0, 0, std::max(filled, track.height()), track.height()}, radius,
                    environment_.color(ColorToken::accent));
    }
}

}  // namespace ovrin
