// Plain geometry values. What the numbers mean (pixels, points, unit square; which corner is the origin) is said by
// the field or parameter that holds them.
#pragma once

#include <algorithm>

namespace ovrin {

struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

// Whole pixels of a picture, from its upper-left corner.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// Without any size where the two don't meet.
inline PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int left = std::max(a.x, b.x);
    const int top = std::max(a.y, b.y);
    return {left, top, std::max(0, std::min(a.x + a.width, b.x + b.width) - left),
            std::max(0, std::min(a.y + a.height, b.y + b.height) - top)};
}

}  // namespace ovrin
