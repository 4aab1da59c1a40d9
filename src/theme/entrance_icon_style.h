// Which icon the program has in the task bar and in its own windows: the bright one or the dark one.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ovrin {

enum class EntranceIconStyle { light, dark };

// In the order in which a picker offers them.
inline constexpr std::array allEntranceIconStyles{EntranceIconStyle::light, EntranceIconStyle::dark};

// The text that preferences use.
constexpr std::string_view rawValue(EntranceIconStyle style) {
    return style == EntranceIconStyle::dark ? "dark" : "light";
}

// What the settings call it.
constexpr std::string_view title(EntranceIconStyle style) {
    return style == EntranceIconStyle::dark ? "深色图标" : "明亮图标";
}

// The picture of the icon.
constexpr std::string_view imageAsset(EntranceIconStyle style) {
    return style == EntranceIconStyle::dark ? "EntranceIconDark" : "EntranceIconLight";
}

// The style of a raw value; exact and case-sensitive, none for any other text.
constexpr std::optional<EntranceIconStyle> entranceIconStyle(std::string_view text) {
    for (const EntranceIconStyle style : allEntranceIconStyles) {
        if (rawValue(style) == text) return style;
    }
    return std::nullopt;
}

}  // namespace ovrin
