// A rectangle of a private screen in device pixels from its upper-left corner.
#pragma once

namespace ovrin {

struct PixelSpot {
    int x = 0;
    int y = 0;
    friend bool operator==(const PixelSpot&, const PixelSpot&) = default;
};

struct PixelArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    PixelSpot center() const { return {.x = x + width / 2, .y = y + height / 2}; }
    PixelSpot topLeft() const { return {.x = x, .y = y}; }
    // The last pixel inside.
    PixelSpot bottomRight() const { return {.x = x + width - 1, .y = y + height - 1}; }
    PixelArea grownBy(int margin) const {
        return {.x = x - margin, .y = y - margin, .width = width + 2 * margin, .height = height + 2 * margin};
    }
    bool contains(const PixelSpot& spot) const {
        return spot.x >= x && spot.x < x + width && spot.y >= y && spot.y < y + height;
    }
    friend bool operator==(const PixelArea&, const PixelArea&) = default;
};

}  // namespace ovrin
