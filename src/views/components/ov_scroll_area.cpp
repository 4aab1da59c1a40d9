#include "views/components/ov_scroll_area.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>

#include "views/components/ov_scroll_bar.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {

namespace {
constexpr int lineStep = 21;
constexpr int revealMargin = 16;  // points left around what is brought into sight
}  // namespace

OVScrollArea::OVScrollArea(ViewEnvironment& environment, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(lineStep);
    new OVScrollBar(environment, this);
    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, &OVScrollArea::noteUserScroll);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int /*minimum*/, int maximum) {
        if (isFollowing_) verticalScrollBar()->setValue(maximum);
    });
}

void OVScrollArea::setContent(QWidget* content) {
    QScrollArea::setWidget(content);
    content->setAutoFillBackground(false);  // which the toolkit has just turned on
}

void OVScrollArea::followBottom() {
    isFollowing_ = true;
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void OVScrollArea::showTop() {
    stopFollowing();
    verticalScrollBar()->setValue(verticalScrollBar()->minimum());
}

void OVScrollArea::noteUserScroll() {
    isFollowing_ = verticalScrollBar()->sliderPosition() >= verticalScrollBar()->maximum();
}

void OVScrollArea::reveal(QWidget& part) {
    const auto scroll = [this, &part] {
        // Layouts ask one another for room through posted events; all have to be done.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        ensureWidgetVisible(&part, 0, revealMargin);
        noteUserScroll();
    };
    QTimer::singleShot(0, &part, scroll);
}

void OVScrollArea::keepInSight(OVStreamingText& text) {
    connect(&text, &OVStreamingText::cursorMoved, this, [this, &text](const QRect& area) {
        const QRect place(text.mapTo(widget(), area.topLeft()), area.size());
        ensureVisible(place.center().x(), place.center().y(), 0, place.height() / 2 + 4);
        noteUserScroll();
    });
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
