#include "views/components/ov_scroll_bar.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "views/components/drawing.h"

namespace ovrin {

namespace {
constexpr int barWidth = 12;
constexpr double idleThickness = 4;
constexpr double activeThickness = 6;
constexpr double edgeGap = 3;
constexpr int minimumThumb = 28;
}  // namespace

OVScrollBar::OVScrollBar(ViewEnvironment& environment, QAbstractScrollArea* area)
    : OVWidget(environment, area), area_(area), model_(area->verticalScrollBar()) {
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->installEventFilter(this);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor);
    connect(model_, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
    connect(model_, &QScrollBar::rangeChanged, this, &OVScrollBar::showIfNeeded);
    showIfNeeded();
}

bool OVScrollBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == area_ && (event->type() == QEvent::Resize || event->type() == QEvent::Show)) placeAtEdge();
    return OVWidget::eventFilter(watched, event);
}

void OVScrollBar::placeAtEdge() {
    setGeometry(area_->width() - barWidth, 0, barWidth, area_->height());
}

void OVScrollBar::showIfNeeded() {
    setVisible(model_->maximum() > model_->minimum());
    update();
}

void OVScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isActive = underMouse() || isDragging_;
    QColor shade = color(theme::ColorToken::ink);
    shade.setAlphaF(isDragging_ ? 0.4F : isActive ? 0.3F : 0.18F);
    const double thickness = isActive ? activeThickness : idleThickness;
    const QRectF thumb = this->thumb();
    fillRounded(painter, QRectF(width() - edgeGap - thickness, thumb.top(), thickness, thumb.height()), thickness / 2,
                shade);
}

void OVScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QRectF thumb = this->thumb();
    const double y = event->position().y();
    grip_ = y >= thumb.top() && y < thumb.bottom() ? y - thumb.top() : thumb.height() / 2;
    isDragging_ = true;
    dragTo(y);
}

void OVScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (isDragging_) dragTo(event->position().y());
}

void OVScrollBar::mouseReleaseEvent(QMouseEvent* /*event*/) {
    isDragging_ = false;
    update();
}

double OVScrollBar::track() const {
    return height() - 2 * edgeGap;
}

QRectF OVScrollBar::thumb() const {
    const double content = model_->maximum() - model_->minimum() + model_->pageStep();
    const double length = std::clamp(track() * model_->pageStep() / std::max(content, 1.0),
                                     std::min<double>(minimumThumb, track()), track());
    const double share =
        static_cast<double>(model_->value() - model_->minimum()) / std::max(model_->maximum() - model_->minimum(), 1);
    return {0, edgeGap + (track() - length) * share, static_cast<double>(width()), length};
}

void OVScrollBar::dragTo(double y) {
    const double room = track() - thumb().height();
    const double share = room > 0 ? (y - grip_ - edgeGap) / room : 0;
    const int range = model_->maximum() - model_->minimum();
    model_->setSliderPosition(model_->minimum() + static_cast<int>(std::clamp(share, 0.0, 1.0) * range));
    model_->triggerAction(QAbstractSlider::SliderMove);
    update();
}

}  // namespace ovrin
