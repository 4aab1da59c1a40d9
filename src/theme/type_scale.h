// The type scale: sizes and weights of the program's texts in the system's font.
#pragma once

#include <cstdint>

namespace ovrin::theme {

enum class FontWeight : std::uint8_t { regular, medium, semibold };
enum class FontDesign : std::uint8_t { standard, rounded, monospaced };

struct FontStyle {
    double size = 13;  // points
    FontWeight weight = FontWeight::regular;
    FontDesign design = FontDesign::standard;
};

namespace font {
inline constexpr FontStyle title{19, FontWeight::semibold, FontDesign::rounded};
inline constexpr FontStyle headline{14, FontWeight::semibold, FontDesign::standard};
inline constexpr FontStyle bodyMedium{13, FontWeight::medium, FontDesign::standard};
inline constexpr FontStyle body{13, FontWeight::regular, FontDesign::standard};
inline constexpr FontStyle caption{11, FontWeight::regular, FontDesign::standard};
inline constexpr FontStyle mono{11, FontWeight::medium, FontDesign::monospaced};
}  // namespace font

}  // namespace ovrin::theme
