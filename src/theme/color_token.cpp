#include "theme/color_token.h"

#include <array>
#include <cstddef>

namespace ovrin::theme {

namespace {

struct Pair {
    Color light;
    Color dark;
};

// In the order of ColorToken.
constexpr std::array<Pair, 14> palette{{
    {{0.969, 0.969, 0.963, 1.0}, {0.055, 0.058, 0.066, 1.0}},
    {{1.0, 1.0, 0.996, 0.82}, {0.075, 0.078, 0.088, 0.76}},
    {{0.941, 0.943, 0.946, 0.72}, {0.105, 0.109, 0.122, 0.68}},
    {{0.914, 0.92, 0.93, 1.0}, {0.145, 0.15, 0.168, 1.0}},
    {{0.12, 0.132, 0.153, 1.0}, {0.956, 0.958, 0.965, 1.0}},
    {{0.376, 0.397, 0.435, 1.0}, {0.7, 0.712, 0.745, 1.0}},
    {{0.555, 0.575, 0.615, 1.0}, {0.5, 0.515, 0.555, 1.0}},
    {{1.0, 0.769, 0.157, 1.0}, {1.0, 0.827, 0.361, 1.0}},
    {{0.545, 0.36, 0.0, 1.0}, {1.0, 0.835, 0.42, 1.0}},
    {{1.0, 0.769, 0.157, 0.16}, {1.0, 0.827, 0.361, 0.18}},
    {{0.18, 0.13, 0.015, 1.0}, {0.125, 0.09, 0.01, 1.0}},
    {{0.105, 0.56, 0.3, 1.0}, {0.345, 0.78, 0.525, 1.0}},
    {{0.74, 0.39, 0.07, 1.0}, {0.98, 0.64, 0.28, 1.0}},
    {{0.78, 0.19, 0.245, 1.0}, {0.95, 0.39, 0.44, 1.0}},
}};

}  // namespace

Color color(ColorToken token, Appearance appearance) {
    const Pair& pair = palette.at(static_cast<std::size_t>(token));
    return appearance == Appearance::dark ? pair.dark : pair.light;
}

double windowBackgroundOpacity(Appearance appearance) {
    return appearance == Appearance::dark ? 0.74 : 0.62;
}

}  // namespace ovrin::theme
