// Which icon stands in the status area: one drawn for dark surroundings (light) or for light ones (dark).
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

// The style of a raw value; exact and case-sensitive, none for any other text.
constexpr std::optional<EntranceIconStyle> entranceIconStyle(std::string_view text) {
    for (const EntranceIconStyle style : allEntranceIconStyles) {
        if (rawValue(style) == text) return style;
    }
    return std::nullopt;
}

}  // namespace ovrin
