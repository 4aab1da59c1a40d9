#include "views/components/ov_scroll_area.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "views/components/drawing.h"
#include "views/components/ov_streaming_text.h"
#include "views/components/ov_widget.h"

namespace ovrin {

namespace {
constexpr int barWidth = 12;
constexpr double idleThickness = 4;
constexpr double activeThickness = 6;
constexpr double edgeGap = 3;
constexpr int minimumThumb = 28;
constexpr int lineStep = 21;
}  // namespace

// Shows and moves the scroll area's own bar, which stays hidden.
class OVScrollArea::Bar final : public OVWidget {
public:
    Bar(ViewEnvironment& environment, OVScrollArea* area)
        : OVWidget(environment, area), model_(area->verticalScrollBar()) {
        setAttribute(Qt::WA_Hover);
        setCursor(Qt::ArrowCursor);
        connect(model_, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
        connect(model_, &QScrollBar::rangeChanged, this, &Bar::showIfNeeded);
        showIfNeeded();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isActive = underMouse() || isDragging_;
        QColor shade = color(theme::ColorToken::ink);
        shade.setAlphaF(isDragging_ ? 0.4F : isActive ? 0.3F : 0.18F);
        const double thickness = isActive ? activeThickness : idleThickness;
        const QRectF thumb = this->thumb();
        fillRounded(painter, QRectF(width() - edgeGap - thickness, thumb.top(), thickness, thumb.height()),
                    thickness / 2, shade);
    }

    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) return;
        const QRectF thumb = this->thumb();
        const double y = event->position().y();
        grip_ = y >= thumb.top() && y < thumb.bottom() ? y - thumb.top() : thumb.height() / 2;
        isDragging_ = true;
        dragTo(y);
    }

    void mouseMoveEvent(QMouseEvent* event) override {
        if (isDragging_) dragTo(event->position().y());
    }

    void mouseReleaseEvent(QMouseEvent* /*event*/) override {
        isDragging_ = false;
        update();
    }

private:
    void showIfNeeded() {
        setVisible(model_->maximum() > model_->minimum());
        update();
    }

    double track() const { return height() - 2 * edgeGap; }

    QRectF thumb() const {
        const double content = model_->maximum() - model_->minimum() + model_->pageStep();
        const double length = std::clamp(track() * model_->pageStep() / std::max(content, 1.0),
                                         std::min<double>(minimumThumb, track()), track());
        const double share = static_cast<double>(model_->value() - model_->minimum()) /
                             std::max(model_->maximum() - model_->minimum(), 1);
        return {0, edgeGap + (track() - length) * share, static_cast<double>(width()), length};
    }

    void dragTo(double y) {
        const double room = track() - thumb().height();
        const double share = room > 0 ? (y - grip_ - edgeGap) / room : 0;
        const int range = model_->maximum() - model_->minimum();
        model_->setSliderPosition(model_->minimum() + static_cast<int>(std::clamp(share, 0.0, 1.0) * range));
        model_->triggerAction(QAbstractSlider::SliderMove);
        update();
    }

    QScrollBar* model_;
    double grip_ = 0;
    bool isDragging_ = false;
};

OVScrollArea::OVScrollArea(ViewEnvironment& environment, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(lineStep);
    bar_ = new Bar(environment, this);
    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, &OVScrollArea::noteUserScroll);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int /*minimum*/, int maximum) {
        if (isFollowing_) verticalScrollBar()->setValue(maximum);
    });
}

void OVScrollArea::followBottom() {
    isFollowing_ = true;
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void OVScrollArea::noteUserScroll() {
    isFollowing_ = verticalScrollBar()->sliderPosition() >= verticalScrollBar()->maximum();
}

void OVScrollArea::keepInSight(OVStreamingText& text) {
    connect(&text, &OVStreamingText::cursorMoved, this, [this, &text](const QRect& area) {
        const QRect place(text.mapTo(widget(), area.topLeft()), area.size());
        ensureVisible(place.center().x(), place.center().y(), 0, place.height() / 2 + 4);
        noteUserScroll();
    });
}

void OVScrollArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    bar_->setGeometry(width() - barWidth, 0, barWidth, height());
}

void OVScrollArea::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() == Qt::NoModifier && event->key() == Qt::Key_Home) {
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    } else if (event->modifiers() == Qt::NoModifier && event->key() == Qt::Key_End) {
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    } else {
        QScrollArea::keyPressEvent(event);
    }
}

}  // namespace ovrin
