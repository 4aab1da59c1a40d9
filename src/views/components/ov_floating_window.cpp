#include "views/components/ov_floating_window.h"

#include <QBitmap>

#include "views/components/drawing.h"

namespace ovrin {

namespace {

Qt::WindowFlags flagsFor(OVFloatingWindow::Focus focus) {
    const Qt::WindowFlags common = Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;
    if (focus == OVFloatingWindow::Focus::accepts) return Qt::Tool | common;
    return Qt::ToolTip | Qt::WindowDoesNotAcceptFocus | common;
}

}  // namespace

OVFloatingWindow::OVFloatingWindow(ViewEnvironment& environment, double cornerRadius, Focus focus)
    : OVWindowBackground(environment, cornerRadius), cornerRadius_(cornerRadius) {
    setWindowFlags(flagsFor(focus));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating, focus == Focus::never);
    connect(&environment, &ViewEnvironment::changed, this, &OVFloatingWindow::applyShape);
}

void OVFloatingWindow::resizeEvent(QResizeEvent* /*event*/) {
    applyShape();
}

void OVFloatingWindow::applyShape() {
    if (environment().settings().isComposited) return clearMask();
    setMask(roundedShape(size(), cornerRadius_));
}

}  // namespace ovrin
