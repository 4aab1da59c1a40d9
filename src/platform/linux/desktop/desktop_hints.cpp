#include "platform/linux/desktop/desktop_hints.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace ovrin {

namespace {

// Themes say it as a word of their name: "Yaru-blue-dark" is dark, "Arc-Darker" is a light theme with dark frames.
bool isDarkTheme(std::string_view name) {
    std::string word;
    const auto isDark = [&word] { return word == "dark"; };
    for (const char character : name) {
        if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        } else if (isDark()) {
            return true;
        } else {
            word.clear();
        }
    }
    return isDark();
}

}  // namespace

theme::Appearance DesktopHints::appearance() const {
    using theme::Appearance;
    if (portalColorScheme == 1U) return Appearance::dark;
    if (portalColorScheme == 2U) return Appearance::light;
    if (colorScheme == "prefer-dark") return Appearance::dark;
    if (colorScheme == "prefer-light") return Appearance::light;
    if (gtkTheme && isDarkTheme(*gtkTheme)) return Appearance::dark;
    return isPaletteDark ? Appearance::dark : Appearance::light;
}

bool DesktopHints::reducesMotion() const {
    return prefersReducedMotion == true || enablesAnimations == false || animationDurationFactor == 0.0;
}

}  // namespace ovrin
