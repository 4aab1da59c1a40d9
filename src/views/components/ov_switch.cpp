#include "views/components/ov_switch.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

// In points.
constexpr int switchWidth = 38;
constexpr int switchHeight = 22;
constexpr double knobInset = 2.5;
constexpr double ringSpace = 2.5;  // by which the rest shrinks for the ring of the focus
constexpr double markWidth = 1.5;
constexpr double markReach = 3;  // of the stroke or circle that tells the state without its colour

}  // namespace

OVSwitch::OVSwitch(ViewEnvironment& environment, const QString& label, QWidget* parent)
    : QCheckBox(parent),
      environment_(environment),
      knob_(environment, theme::motion::press, [this](double) { update(); }) {
    setAccessibleName(label);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

void OVSwitch::setOn(bool isOn) {
    if (isOn == isChecked()) return;
    setChecked(isOn);
    moveKnob();
}

void OVSwitch::nextCheckState() {
    setChecked(!isChecked());
    moveKnob();
}

void OVSwitch::moveKnob() {
    const double goal = isChecked() ? 1 : 0;
    if (isVisible()) {
        knob_.animateTo(goal);
    } else {
        knob_.jumpTo(goal);
    }
}

void OVSwitch::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QCheckBox::keyPressEvent(event);
}

QSize OVSwitch::sizeHint() const {
    return {switchWidth, switchHeight};
}

void OVSwitch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const double inset = hasFocus() ? ringSpace : 0;
    const QRectF track = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    const double trackHeight = track.height();
    const double on = std::clamp(knob_.value(), 0.0, 1.0);
    QColor off = environment_.color(ColorToken::ink3);
    off.setAlphaF(underMouse() ? 0.55F : 0.45F);
    fillRounded(painter, track, trackHeight / 2, off);
    QColor accent = environment_.color(ColorToken::accent);
    accent.setAlphaF(static_cast<float>(on));
    fillRounded(painter, track, trackHeight / 2, accent);

    const double knobSize = trackHeight - 2 * knobInset;
    const double travel = track.width() - trackHeight;
    const QRectF knob(track.left() + knobInset + travel * std::clamp(knob_.value(), -0.05, 1.05),
                      track.top() + knobInset, knobSize, knobSize);
    fillRounded(painter, knob, knobSize / 2, Qt::white);

    // A line where it is on, a circle where it is off, as on switches everywhere.
    painter.setBrush(Qt::NoBrush);
    if (isChecked()) {
        painter.setPen(QPen(environment_.color(ColorToken::accentForeground), markWidth, Qt::SolidLine, Qt::RoundCap));
        const QPointF middle(track.left() + trackHeight / 2, track.center().y());
        painter.drawLine(middle - QPointF(0, markReach), middle + QPointF(0, markReach));
    } else {
        painter.setPen(QPen(QColor(255, 255, 255, 220), markWidth));
        painter.drawEllipse(QPointF(track.right() - trackHeight / 2, track.center().y()), markReach, markReach);
    }
    if (!hasFocus()) return;
    painter.setPen(QPen(environment_.color(ColorToken::accent), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), height() / 2.0, height() / 2.0);
}

}  // namespace ovrin
