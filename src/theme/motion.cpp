#include "theme/motion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovrin::theme {

namespace {
constexpr double settledWithin = 0.001;
}

double Spring::valueAt(std::chrono::duration<double> elapsed) const {
    const double t = std::max(0.0, elapsed.count());
    const double omega = 2 * std::numbers::pi / response;
    const double zeta = dampingFraction;
    if (zeta < 1) {
        const double damped = omega * std::sqrt(1 - zeta * zeta);
        return 1 - std::exp(-zeta * omega * t) * (std::cos(damped * t) + zeta * omega / damped * std::sin(damped * t));
    }
    if (zeta == 1) return 1 - std::exp(-omega * t) * (1 + omega * t);
    const double root = std::sqrt(zeta * zeta - 1);
    const double slow = omega * (zeta - root);
    const double fast = omega * (zeta + root);
    return 1 - (fast * std::exp(-slow * t) - slow * std::exp(-fast * t)) / (fast - slow);
}

double Spring::carryAt(std::chrono::duration<double> elapsed) const {
    const double t = std::max(0.0, elapsed.count());
    const double omega = 2 * std::numbers::pi / response;
    const double zeta = dampingFraction;
    if (zeta < 1) {
        const double damped = omega * std::sqrt(1 - zeta * zeta);
        return std::exp(-zeta * omega * t) * std::sin(damped * t) / damped;
    }
    if (zeta == 1) return t * std::exp(-omega * t);
    const double root = omega * std::sqrt(zeta * zeta - 1);
    return std::exp(-zeta * omega * t) * std::sinh(root * t) / root;
}

std::chrono::duration<double> Spring::settlingDuration() const {
    const double omega = 2 * std::numbers::pi / response;
    // The slowest decaying term bounds the rest; near critical damping its factor grows, hence the search on the curve.
    const double rate = dampingFraction <= 1
                            ? dampingFraction * omega
                            : omega * (dampingFraction - std::sqrt(dampingFraction * dampingFraction - 1));
    const double step = response / 64;
    const int steps = static_cast<int>(std::ceil(16 / rate / step));
    double settled = 0;
    for (int i = 0; i < steps; ++i) {
        if (std::abs(1 - valueAt(std::chrono::duration<double>(i * step))) > settledWithin) settled = (i + 1) * step;
    }
    return std::chrono::duration<double>(settled);
}

double easeOut(double fraction) {
    const double rest = 1 - std::clamp(fraction, 0.0, 1.0);
    return 1 - rest * rest * rest;
}

}  // namespace ovrin::theme
