// The named colours of the program. Each has a light and a dark value; which one is drawn depends on the appearance of
// the window it is drawn in, not on the system's.
#pragma once

#include <cstdint>

namespace ovrin::theme {

// sRGB, each component 0..1, alpha not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    // The same colour with its alpha multiplied.
    constexpr Color withOpacity(double opacity) const { return {red, green, blue, alpha * opacity}; }
    friend constexpr bool operator==(const Color&, const Color&) = default;
};

enum class Appearance : std::uint8_t { light, dark };

enum class ColorToken : std::uint8_t {
    page,              // window background
    canvas,            // surface cards
    inset,             // inset controls, fields
    hover,             // hovered rows and buttons
    ink,               // primary text
    ink2,              // secondary text
    ink3,              // tertiary text, idle icons
    accent,            // accent fill
    accentInk,         // accent-coloured text
    accentTint,        // selection and highlight backgrounds
    accentForeground,  // text on accent fill
    green,             // success
    orange,            // warning
    red,               // error, destructive
};

Color color(ColorToken token, Appearance appearance);

// The opacity of the page colour over a blurred window background.
double windowBackgroundOpacity(Appearance appearance);

}  // namespace ovrin::theme
