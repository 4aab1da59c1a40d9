// Plain geometry values. What the numbers mean (pixels, points, unit square; which corner is the origin) is said by
// the field or parameter that holds them.
#pragma once

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

}  // namespace ovrin
