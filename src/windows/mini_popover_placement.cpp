#include "windows/mini_popover_placement.h"

#include <algorithm>

namespace ovrin {

namespace {

constexpr Size distanceFromPointer{12, 37};  // of the card's upper-left corner

// What is kept free between the card and the edges of the visible frame; above and on the right beyond its shadow.
constexpr double nearMargin = 8;
constexpr double rightMargin = 38;
constexpr double topMargin = 33;

// The upper limit wins where there is no room for both.
double between(double lowest, double value, double highest) {
    return std::min(std::max(lowest, value), highest);
}

}  // namespace

WindowPoint miniPopoverOrigin(WindowPoint pointer, const std::vector<DesktopScreen>& screens) {
    const WindowRect visible = visibleFrameAt(pointer, screens);
    const auto [width, height] = miniPopoverSize;
    return {
        between(visible.x + nearMargin, pointer.x + distanceFromPointer.width, visible.maxX() - width - rightMargin),
        between(visible.y + nearMargin, pointer.y - distanceFromPointer.height - height,
                visible.maxY() - height - topMargin)};
}

}  // namespace ovrin
