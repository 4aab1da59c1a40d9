#include "views/components/spring_animation.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "views/components/view_environment.h"

namespace ovrin {
namespace {

// Drives the animation from millisecond to millisecond.
class SpringAnimationTest : public testing::TestWithParam<theme::Spring> {
protected:
    void run(int milliseconds) {
        for (int i = 0; i < milliseconds; ++i) {
            animation.setCurrentTime(animation.currentTime() + 1);
            values.push_back(animation.value());
        }
    }

    ViewEnvironment environment;
    SpringAnimation animation{environment, GetParam(), [](double) {}};
    std::vector<double> values;
};

TEST_P(SpringAnimationTest, KeepsItsSpeedWhenItIsTurnedRoundAndArrives) {
    animation.animateTo(1);
    run(60);
    animation.animateTo(0);
    run(25);
    animation.animateTo(1);  // while the goals still blend, where they do
    run(25);
    animation.animateTo(-1);
    run(animation.duration());
    EXPECT_EQ(animation.value(), -1);

    double fastest = 0;
    double jerk = 0;
    for (std::size_t i = 2; i < values.size(); ++i) {
        const double speed = values[i] - values[i - 1];
        fastest = std::max(fastest, std::abs(speed));
        jerk = std::max(jerk, std::abs(speed - (values[i - 1] - values[i - 2])));
    }
    EXPECT_LT(jerk, fastest / 8);
}

INSTANTIATE_TEST_SUITE_P(Motions, SpringAnimationTest,
                         testing::Values(theme::motion::tab, theme::motion::content, theme::motion::press,
                                         theme::motion::iconHover));

}  // namespace
}  // namespace ovrin
