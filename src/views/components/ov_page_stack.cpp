#include "views/components/ov_page_stack.h"

#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace ovrin {

namespace {
constexpr double enteringTravel = 18;  // points
constexpr double leavingTravel = 12;
constexpr int reducedDuration = 140;  // milliseconds
}  // namespace

OVPageStack::OVPageStack(ViewEnvironment& environment, QWidget* parent)
    : OVWidget(environment, parent),
      progress_(environment, theme::motion::tab, [this](double progress) { move(progress); }) {
    progress_.setReducedDuration(reducedDuration);
    connect(&progress_, &QAbstractAnimation::finished, this, &OVPageStack::settle);
}

void OVPageStack::add(QWidget* page) {
    page->setParent(this);
    page->setGeometry(rect());
    page->setVisible(pages_.empty());
    pages_.push_back(page);
}

void OVPageStack::show(int index, Direction direction) {
    if (index == current_) return;
    QWidget* const before = currentPage();
    const double opacity = fade_ ? fade_->opacity() : 1;
    const QPoint place = before->pos();
    settle();
    if (isVisible()) {
        leaving_ = before->grab();
        leavingFrom_ = place;
        leavingOpacity_ = opacity;
    }
    current_ = index;
    direction_ = direction == Direction::forward ? 1 : -1;
    QWidget* const page = currentPage();
    page->setGeometry(rect());
    if (!isVisible()) {
        page->show();
        before->hide();
        return;
    }
    fade_ = new QGraphicsOpacityEffect(page);
    page->setGraphicsEffect(fade_);
    progress_.jumpTo(0);
    page->show();
    before->hide();
    progress_.animateTo(1);
}

double OVPageStack::travel(double points) const {
    return environment().settings().reducesMotion ? 0 : points * direction_;
}

void OVPageStack::move(double progress) {
    if (!fade_) return;
    fade_->setOpacity(std::clamp(progress, 0.0, 1.0));
    currentPage()->move(0, static_cast<int>(std::lround(travel(enteringTravel) * (1 - progress))));
    update();
}

void OVPageStack::settle() {
    progress_.stop();
    leaving_ = {};
    if (fade_) currentPage()->setGraphicsEffect(nullptr);  // which destroys it
    currentPage()->move(0, 0);
    update();
}

void OVPageStack::paintEvent(QPaintEvent* /*event*/) {
    if (leaving_.isNull()) return;
    const double progress = std::clamp(progress_.value(), 0.0, 1.0);
    QPainter painter(this);
    painter.setOpacity(leavingOpacity_ * (1 - progress));
    painter.drawPixmap(leavingFrom_ - QPointF(0, travel(leavingTravel) * progress), leaving_);
}

void OVPageStack::resizeEvent(QResizeEvent* /*event*/) {
    for (QWidget* const page : pages_) page->resize(size());
}

}  // namespace ovrin
