// Which appearance the user wants the program to have.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ovrin {

enum class AppAppearanceMode { system, light, dark };

// In the order in which a picker offers them.
inline constexpr std::array allAppAppearanceModes{AppAppearanceMode::system, AppAppearanceMode::light,
                                                  AppAppearanceMode::dark};

// The text that preferences and the environment use.
constexpr std::string_view rawValue(AppAppearanceMode mode) {
    switch (mode) {
        case AppAppearanceMode::light:
            return "light";
        case AppAppearanceMode::dark:
            return "dark";
        case AppAppearanceMode::system:
            break;
    }
    return "system";
}

// What the settings call it.
constexpr std::string_view title(AppAppearanceMode mode) {
    switch (mode) {
        case AppAppearanceMode::light:
            return "浅色";
        case AppAppearanceMode::dark:
            return "深色";
        case AppAppearanceMode::system:
            break;
    }
    return "跟随系统";
}

// The mode of a raw value; exact and case-sensitive, none for any other text.
constexpr std::optional<AppAppearanceMode> appAppearanceMode(std::string_view text) {
    for (const AppAppearanceMode mode : allAppAppearanceModes) {
        if (rawValue(mode) == text) return mode;
    }
    return std::nullopt;
}

}  // namespace ovrin
