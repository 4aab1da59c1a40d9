// The program's three spring motions, as curves over time.
#pragma once

#include <chrono>

namespace ovrin::theme {

// A damped harmonic oscillator.
struct Spring {
    double response = 0;         // seconds: the period of the undamped oscillation
    double dampingFraction = 1;  // 1 is critical; less overshoots, more creeps
    double blendDuration = 0;    // seconds over which a running motion turns into this one

    // Where a motion from 0 to 1 that started at rest is after the given time; may overshoot 1.
    double valueAt(std::chrono::duration<double> elapsed) const;

    // How far beyond that a motion is for every unit a second that it had at its start.
    double carryAt(std::chrono::duration<double> elapsed) const;

    // When a motion from rest stays within a thousandth of its goal.
    std::chrono::duration<double> settlingDuration() const;
};

namespace motion {
inline constexpr Spring tab{.response = 0.42, .dampingFraction = 0.86, .blendDuration = 0.12};
inline constexpr Spring content{.response = 0.46, .dampingFraction = 0.9, .blendDuration = 0.1};
inline constexpr Spring press{.response = 0.24, .dampingFraction = 0.82, .blendDuration = 0.0};
inline constexpr Spring iconHover{.response = 0.3, .dampingFraction = 0.67, .blendDuration = 0.0};
}  // namespace motion

// The short motion that stands in for a spring when the user asked for less movement: value at a fraction 0..1 of its
// duration.
double easeOut(double fraction);

}  // namespace ovrin::theme
