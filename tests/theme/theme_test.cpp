#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "theme/color_token.h"
#include "theme/motion.h"
#include "theme/ov_icon.h"

namespace ovrin {
namespace {

using Seconds = std::chrono::duration<double>;

TEST(Spring, StartsAtRestAndSettlesAtItsGoal) {
    for (const theme::Spring spring : {theme::motion::tab, theme::motion::content, theme::motion::press,
                                       theme::Spring{.response = 0.3, .dampingFraction = 1},
                                       theme::Spring{.response = 0.3, .dampingFraction = 1.8}}) {
        EXPECT_NEAR(spring.valueAt(Seconds(0)), 0, 1e-12);
        EXPECT_LT(spring.valueAt(Seconds(1e-4)), 1e-3) << "no jump at the start";
        const Seconds settled = spring.settlingDuration();
        EXPECT_GT(settled.count(), spring.response / 2);
        for (const double later : {0.0, 0.05, 0.5, 5.0})
            EXPECT_NEAR(spring.valueAt(settled + Seconds(later)), 1, 0.0011);
    }
}

TEST(Spring, OvershootsOnlyBelowCriticalDamping) {
    const auto peak = [](const theme::Spring& spring) {
        double highest = 0;
        for (int step = 0; step < 1500; ++step) highest = std::max(highest, spring.valueAt(Seconds(step * 0.002)));
        return highest;
    };
    // The first overshoot of a damped oscillator is exp(-pi * zeta / sqrt(1 - zeta^2)).
    EXPECT_NEAR(peak({.response = 0.3, .dampingFraction = 0.5}), 1.163, 0.001);
    EXPECT_LE(peak({.response = 0.3, .dampingFraction = 1}), 1.0);
    EXPECT_LE(peak({.response = 0.3, .dampingFraction = 2}), 1.0);
}

// A motion from rest and what a starting speed adds to it both obey the oscillator's own law, here taken step by step.
TEST(Spring, FollowsTheDampedOscillatorFromAnyStart) {
    for (const double damping : {0.67, 1.0, 1.8}) {
        const theme::Spring spring{.response = 0.3, .dampingFraction = damping};
        constexpr double startSpeed = -7;
        constexpr double step = 1e-6;
        const double omega = 2 * std::numbers::pi / spring.response;
        double value = 0;
        double speed = startSpeed;
        for (int i = 0; i < 300'000; ++i) {
            if (i % 10'000 == 0) {
                const Seconds elapsed(i * step);
                ASSERT_NEAR(spring.valueAt(elapsed) + startSpeed * spring.carryAt(elapsed), value, 1e-3) << i;
            }
            speed += step * (omega * omega * (1 - value) - 2 * damping * omega * speed);
            value += step * speed;
        }
    }
}

TEST(OVIcon, KnowsEveryAssetOnceAndFallsBackToSparkles) {
    std::set<std::string_view> names;
    for (int i = 0; i < OVIcon::count; ++i) names.insert(OVIcon(static_cast<OVIcon::Case>(i)).rawValue());
    EXPECT_EQ(names.size(), static_cast<std::size_t>(OVIcon::count));
    EXPECT_EQ(OVIcon("checkmark"), OVIcon::check);
    EXPECT_EQ(OVIcon("character.book.closed"), OVIcon::languages);
    EXPECT_EQ(OVIcon("no.such.symbol"), OVIcon::sparkles);
    EXPECT_EQ(OVIcon("rectangle.on.rectangle").rawValue(), "OVLucidePanels");
}

// Relative luminance and contrast as WCAG 2 defines them.
double luminance(const theme::Color& color) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const theme::Color& a, const theme::Color& b) {
    const double x = luminance(a) + 0.05;
    const double y = luminance(b) + 0.05;
    return std::max(x, y) / std::min(x, y);
}

TEST(ColorToken, TextStaysReadableOnThePageInBothAppearances) {
    using theme::ColorToken;
    for (const auto appearance : {theme::Appearance::light, theme::Appearance::dark}) {
        const auto page = theme::color(ColorToken::page, appearance);
        for (const auto token : {ColorToken::ink, ColorToken::ink2, ColorToken::accentInk}) {
            EXPECT_GE(contrast(theme::color(token, appearance), page), 4.5);
        }
        EXPECT_GE(contrast(theme::color(ColorToken::accentForeground, appearance),
                           theme::color(ColorToken::accent, appearance)),
                  4.5);
    }
}

}  // namespace
}  // namespace ovrin
