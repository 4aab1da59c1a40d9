// Plain geometry values. The space that the numbers belong to is part of the type: values of different spaces meet
// only through a conversion with a name.
#pragma once

#include <algorithm>

namespace ovrin {

// Points of the desktop, origin at the primary display's upper-left corner, y downwards.
struct DisplayPoints {
    using Number = double;
};
// Points of the desktop, origin at the primary display's lower-left corner, y upwards.
struct WindowPoints {
    using Number = double;
};
// Points from the upper-left corner of one view or of one display, y downwards.
struct LocalPoints {
    using Number = double;
};
// Whole pixels of a picture, from its upper-left corner, y downwards.
struct PicturePixels {
    using Number = int;
};
// Parts of a picture's width and height, from its lower-left corner, y upwards: all of it is 0, 0, 1, 1.
struct UnitSquare {
    using Number = double;
};

template <typename Space>
struct Point {
    using Number = typename Space::Number;
    Number x = 0;
    Number y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

template <typename Space>
struct Rect {
    using Number = typename Space::Number;
    Number x = 0;
    Number y = 0;
    Number width = 0;
    Number height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;

    Number maxX() const { return x + width; }
    Number maxY() const { return y + height; }
    Point<Space> center() const { return {x + width / 2, y + height / 2}; }
    bool isEmpty() const { return width <= 0 || height <= 0; }

    // The two far edges are outside.
    bool contains(Point<Space> point) const {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }

    // The same area without a negative width or height.
    Rect standardized() const {
        return {std::min(x, maxX()), std::min(y, maxY()), std::max(width, -width), std::max(height, -height)};
    }
};

// Without any size where the two don't meet.
template <typename Space>
Rect<Space> intersection(const Rect<Space>& a, const Rect<Space>& b) {
    using Number = typename Space::Number;
    const Number left = std::max(a.x, b.x);
    const Number top = std::max(a.y, b.y);
    return {left, top, std::max(Number(0), std::min(a.maxX(), b.maxX()) - left),
            std::max(Number(0), std::min(a.maxY(), b.maxY()) - top)};
}

using DisplayPoint = Point<DisplayPoints>;
using DisplayRect = Rect<DisplayPoints>;
using WindowPoint = Point<WindowPoints>;
using WindowRect = Rect<WindowPoints>;
using LocalPoint = Point<LocalPoints>;
using LocalRect = Rect<LocalPoints>;
using PixelRect = Rect<PicturePixels>;
using UnitRect = Rect<UnitSquare>;

// Between display and window space; the height is the primary display's.
inline WindowRect toWindowSpace(const DisplayRect& rect, double primaryHeight) {
    return {rect.x, primaryHeight - rect.maxY(), rect.width, rect.height};
}
inline DisplayPoint toDisplaySpace(WindowPoint point, double primaryHeight) {
    return {point.x, primaryHeight - point.y};
}

// Between display space and that of the display, or of the view, with this frame.
inline DisplayRect toDisplaySpace(const LocalRect& rect, const DisplayRect& frame) {
    return {frame.x + rect.x, frame.y + rect.y, rect.width, rect.height};
}
inline LocalRect toLocalSpace(const DisplayRect& rect, const DisplayRect& frame) {
    return {rect.x - frame.x, rect.y - frame.y, rect.width, rect.height};
}

// Where a part of a picture lies in the view that shows the picture in this frame.
inline LocalRect toLocalSpace(const UnitRect& part, const LocalRect& frame) {
    return {frame.x + frame.width * part.x, frame.y + frame.height * (1 - part.maxY()), frame.width * part.width,
            frame.height * part.height};
}

}  // namespace ovrin
