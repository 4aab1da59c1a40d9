#include "views/components/ov_floating_window.h"

#include <QBitmap>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>
#include <utility>

#include "views/components/drawing.h"

namespace ovrin {

namespace {

// Of the shadow, in points.
constexpr int shadowMargin = 26;
constexpr double shadowBlur = 22;
constexpr double shadowOffset = 6;

}  // namespace

OVFloatingWindow::OVFloatingWindow(ViewEnvironment& environment, double cornerRadius, WindowRole role)
    : OVWindowBackground(environment, cornerRadius), cornerRadius_(cornerRadius) {
    giveRole(*this, role);
    setAttribute(Qt::WA_TranslucentBackground);
    connect(&environment, &ViewEnvironment::changed, this, &OVFloatingWindow::applyShape);
}

void OVFloatingWindow::setFrameSize(const QSize& size) {
    frameSize_ = size;
    connect(&environment(), &ViewEnvironment::changed, this, &OVFloatingWindow::adaptShadow);
    adaptShadow();
}

// The frame keeps its place. In light surroundings the hairline sets it off enough.
void OVFloatingWindow::adaptShadow() {
    const int margin = environment().isDark() && environment().settings().isComposited ? shadowMargin : 0;
    const QPoint corner = pos() + QPoint(shadowMargin_, shadowMargin_);
    const bool isOther = std::exchange(shadowMargin_, margin) != margin;
    const QMargins margins(margin, margin, margin, margin);
    setContentsMargins(margins);
    setFixedSize(frameSize_.grownBy(margins));
    moveFrame(corner);
    if (isOther) tellMargin();
    update();
}

void OVFloatingWindow::moveFrame(const QPoint& corner) {
    move(corner - QPoint(shadowMargin_, shadowMargin_));
}

void OVFloatingWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect frame = rect().adjusted(shadowMargin_, shadowMargin_, -shadowMargin_, -shadowMargin_);
    if (shadowMargin_ > 0 && !frame.contains(event->rect())) {
        drawShadow(painter, frame, cornerRadius_, shadowBlur, shadowOffset, QColor::fromRgbF(0, 0, 0, 0.5F));
    }
    drawWindowBackground(painter, frame, cornerRadius_, environment());
}

void OVFloatingWindow::resizeEvent(QResizeEvent* /*event*/) {
    applyShape();
}

void OVFloatingWindow::showEvent(QShowEvent* /*event*/) {
    applyShape();
}

void OVFloatingWindow::applyShape() {
    if (shadowMargin_ > 0) tellMargin();
    if (environment().settings().isComposited) return clearMask();
    setMask(roundedShape(size(), cornerRadius_));
}

void OVFloatingWindow::tellMargin() {
    if (QWindow* const window = windowHandle()) setShadowMargins(*window, {.shadow = shadowMargin_});
}

}  // namespace ovrin
