#include "recognition/capture_geometry.h"

#include <algorithm>
#include <cmath>

namespace ovrin::capture {

namespace {

constexpr double smallestSelection = 4;

constexpr double labelHeight = 22;
constexpr double labelPadding = 8;
constexpr double labelGap = 8;
constexpr double edgeGap = 12;

constexpr double pillHeight = 36;
constexpr double pillDistanceFromTop = 24;
constexpr double pillPadding = 14;
constexpr double pillSpare = 44;  // both paddings and the gap between hint and key box
constexpr double keyBoxHeight = 20;
constexpr double keyBoxInset = 10;
constexpr double smallestKeyBox = 30;

}  // namespace

LocalRect selectionBetween(LocalPoint start, LocalPoint end) {
    return {std::min(start.x, end.x), std::min(start.y, end.y), std::abs(start.x - end.x), std::abs(start.y - end.y)};
}

bool isSelection(const LocalRect& rectangle) {
    return rectangle.width > smallestSelection && rectangle.height > smallestSelection;
}

std::string sizeLabelText(const LocalRect& selection) {
    return std::to_string(static_cast<long>(selection.width)) + " × " +
           std::to_string(static_cast<long>(selection.height));
}

LocalRect sizeLabelFrame(const LocalRect& selection, const LocalRect& bounds, Size text) {
    const double width = std::ceil(text.width) + 2 * labelPadding;
    const double x = std::min(bounds.maxX() - width - edgeGap, std::max(selection.x, edgeGap));
    const bool fitsBelow = selection.maxY() + labelGap + labelHeight + edgeGap <= bounds.maxY();
    const double y = fitsBelow ? selection.maxY() + labelGap : std::max(selection.y - labelGap - labelHeight, edgeGap);
    return {x, y, width, labelHeight};
}

HintLayout hintLayout(const LocalRect& bounds, Size hint, Size key) {
    const double keyWidth = std::max(std::ceil(key.width) + 12, smallestKeyBox);
    const double pillWidth = keyWidth + std::ceil(hint.width) + pillSpare;
    HintLayout layout;
    layout.pill = {bounds.center().x - pillWidth / 2, pillDistanceFromTop, pillWidth, pillHeight};
    const double middle = layout.pill.center().y;
    layout.hintOrigin = {layout.pill.x + pillPadding, middle - hint.height / 2};
    layout.keyBox = {layout.pill.maxX() - keyWidth - keyBoxInset, middle - keyBoxHeight / 2, keyWidth, keyBoxHeight};
    layout.keyOrigin = {layout.keyBox.center().x - key.width / 2, middle - key.height / 2};
    return layout;
}

}  // namespace ovrin::capture
