#include "views/components/spring_animation.h"

#include <chrono>
#include <cmath>
#include <utility>

#include "views/components/view_environment.h"

namespace ovrin {

SpringAnimation::SpringAnimation(const ViewEnvironment& environment, theme::Spring spring,
                                 std::function<void(double)> update, QObject* parent)
    : QAbstractAnimation(parent),
      environment_(environment),
      spring_(spring),
      update_(std::move(update)),
      settlingDuration_(static_cast<int>(std::ceil(spring.settlingDuration().count() * 1000))),
      blendDuration_(spring.blendDuration * 1000) {}

void SpringAnimation::animateTo(double goal) {
    if (goal == goal_ && (state() == Running || value_ == goal)) return;
    const bool isTurned = state() == Running;
    startSpeed_ = isTurned ? speed() : 0;
    goalBefore_ = isTurned ? goal_ : goal;
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
    if (environment_.settings().reducesMotion) return reducedDuration_;
    return settlingDuration_ + static_cast<int>(goalBefore_ == goal_ ? 0 : blendDuration_);
}

double SpringAnimation::valueAt(double milliseconds) const {
    if (environment_.settings().reducesMotion) {
        return from_ + (goal_ - from_) * theme::easeOut(milliseconds / reducedDuration_);
    }
    const std::chrono::duration<double, std::milli> elapsed(milliseconds);
    const double blended = milliseconds < blendDuration_ ? milliseconds / blendDuration_ : 1;
    const double goal = std::lerp(goalBefore_, goal_, blended * blended * (3 - 2 * blended));
    return from_ + (goal - from_) * spring_.valueAt(elapsed) + startSpeed_ * 1000 * spring_.carryAt(elapsed);
}

double SpringAnimation::speed() const {
    const int now = currentTime();
    return environment_.settings().reducesMotion ? 0 : valueAt(now + 1) - valueAt(now);
}

void SpringAnimation::updateCurrentTime(int milliseconds) {
    value_ = milliseconds >= duration() ? goal_ : valueAt(milliseconds);
    update_(value_);
}

}  // namespace ovrin
