// A value that moves from where it is to a goal along one of the theme's springs. Turned round on its way it keeps its
// speed, and the old goal turns into the new one over the spring's blend duration.
#pragma once

#include <QAbstractAnimation>
#include <functional>

#include "theme/motion.h"

namespace ovrin {

class ViewEnvironment;

class SpringAnimation final : public QAbstractAnimation {
public:
    // update is called with each new value, on the main thread. Both references must outlive the animation.
    SpringAnimation(const ViewEnvironment& environment, theme::Spring spring, std::function<void(double)> update,
                    QObject* parent = nullptr);

    // Starts towards the goal from the present value and speed. Under reduced motion it is a short ease-out instead.
    void animateTo(double goal);
    // How long that takes, in milliseconds; 120 unless told otherwise.
    void setReducedDuration(int milliseconds) { reducedDuration_ = milliseconds; }

    // Goes there without motion.
    void jumpTo(double value);

    double value() const { return value_; }
    int duration() const override;

protected:
    void updateCurrentTime(int milliseconds) override;

private:
    double valueAt(double milliseconds) const;
    double speed() const;

    const ViewEnvironment& environment_;
    theme::Spring spring_;
    std::function<void(double)> update_;
    int settlingDuration_;  // milliseconds, as the others
    double blendDuration_;
    int reducedDuration_ = 120;
    double from_ = 0;
    double startSpeed_ = 0;  // units a millisecond
    double goalBefore_ = 0;  // from which the goal is blended over
    double goal_ = 0;
    double value_ = 0;
};

}  // namespace ovrin
