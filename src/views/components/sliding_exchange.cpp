#include "views/components/sliding_exchange.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>

#include "theme/motion.h"
#include "views/components/view_environment.h"

namespace ovrin {

namespace {
constexpr double entersFrom = 20;  // points beside its place
constexpr double leavesTo = -14;
constexpr int reducedDuration = 140;  // milliseconds
// What the widget and its children draw, on nothing.
QPixmap pictureOf(QWidget& widget) {
    const double ratio = widget.devicePixelRatioF();
    QPixmap picture(widget.size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    widget.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture;
}

}  // namespace

SlidingExchange::SlidingExchange(const ViewEnvironment& environment, QWidget& widget)
    : environment_(environment),
      widget_(widget),
      progress_(environment, theme::motion::tab, [this](double /*progress*/) { update(); }) {
    progress_.setReducedDuration(reducedDuration);
    widget.setGraphicsEffect(this);
    setEnabled(false);
    connect(&progress_, &QAbstractAnimation::finished, this, [this] {
        before_ = {};
        setEnabled(false);
    });
}

void SlidingExchange::begin(Direction direction) {
    progress_.stop();
    setEnabled(false);
    before_ = pictureOf(widget_);
    direction_ = direction;
    progress_.jumpTo(0);
    setEnabled(true);
    progress_.animateTo(1);
}

void SlidingExchange::draw(QPainter* painter) {
    QPoint place;
    const QPixmap now = sourcePixmap(Qt::LogicalCoordinates, &place, QGraphicsEffect::NoPad);
    const double progress = progress_.value();
    const double sign = direction_ == Direction::forward ? 1 : -1;
    const double way = environment_.settings().reducesMotion ? 0 : sign;
    const double opacity = std::clamp(progress, 0.0, 1.0);
    painter->setOpacity(1 - opacity);
    painter->drawPixmap(QPointF(way * leavesTo * progress, 0), before_);
    painter->setOpacity(opacity);
    painter->drawPixmap(QPointF(place) + QPointF(way * entersFrom * (1 - progress), 0), now);
}

}  // namespace ovrin
