// What the several voices of a Linux desktop say about its look, and what follows from them together.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "theme/color_token.h"

namespace ovrin {

// A voice that says nothing about something is none there.
struct DesktopHints {
    std::optional<std::uint32_t> portalColorScheme{};  // 1 dark, 2 light, 0 no preference
    std::optional<std::string> colorScheme{};          // "prefer-dark", "prefer-light", "default"
    std::optional<std::string> gtkTheme{};             // "Adwaita-dark"
    bool isPaletteDark = false;                        // of the window toolkit's own colours

    std::optional<bool> prefersReducedMotion{};
    std::optional<bool> enablesAnimations{};
    std::optional<double> animationDurationFactor{};  // 0: animations take no time

    // The first voice that has a preference decides.
    theme::Appearance appearance() const;
    bool reducesMotion() const;
};

}  // namespace ovrin
