#include "views/components/spring_animation.h"

#include <chrono>
#include <cmath>
#include <utility>

#include "views/components/view_environment.h"

namespace ovrin {

namespace {
constexpr int reducedDuration = 120;  // milliseconds
}

SpringAnimation::SpringAnimation(const ViewEnvironment& environment, theme::Spring spring,
                                 std::function<void(double)> update, QObject* parent)
    : QAbstractAnimation(parent),
      environment_(environment),
      spring_(spring),
      update_(std::move(update)),
      springDuration_(static_cast<int>(std::ceil(spring.settlingDuration().count() * 1000))) {}

void SpringAnimation::animateTo(double goal) {
    if (goal == goal_ && (state() == Running || value_ == goal)) return;
    stop();
    from_ = value_;
    goal_ = goal;
    start();
}

void SpringAnimation::jumpTo(double value) {
    stop();
    from_ = goal_ = value_ = value;
    update_(value_);
}

int SpringAnimation::duration() const {
    return environment_.settings().reducesMotion ? reducedDuration : springDuration_;
}

void SpringAnimation::updateCurrentTime(int milliseconds) {
    const double progress = milliseconds >= duration() ? 1
                            : environment_.settings().reducesMotion
                                ? theme::easeOut(static_cast<double>(milliseconds) / reducedDuration)
                                : spring_.valueAt(std::chrono::duration<double, std::milli>(milliseconds));
    value_ = from_ + (goal_ - from_) * progress;
    update_(value_);
}

}  // namespace ovrin
