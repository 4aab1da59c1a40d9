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

double maxX(const Rect& r) {
    return r.x + r.width;
}
double maxY(const Rect& r) {
    return r.y + r.height;
}
double midX(const Rect& r) {
    return r.x + r.width * 0.5;
}
double midY(const Rect& r) {
    return r.y + r.height * 0.5;
}

}  // namespace

Rect selectionBetween(Point start, Point end) {
    return {std::min(start.x, end.x), std::min(start.y, end.y), std::abs(start.x - end.x), std::abs(start.y - end.y)};
}

bool isSelection(const Rect& rectangle) {
    return rectangle.width > smallestSelection && rectangle.height > smallestSelection;
}

Rect toDisplaySpace(const Rect& rectangle, std::optional<double> primaryDisplayHeight) {
    if (!primaryDisplayHeight) return rectangle;
    return {rectangle.x, *primaryDisplayHeight - maxY(rectangle), rectangle.width, rectangle.height};
}

std::string sizeLabelText(const Rect& selection) {
    return std::to_string(static_cast<long>(selection.width)) + " × " +
           std::to_string(static_cast<long>(selection.height));
}

Rect sizeLabelFrame(const Rect& selection, const Rect& bounds, Size text) {
    const double width = std::ceil(text.width) + 2 * labelPadding;
    const double x = std::min(maxX(bounds) - width - edgeGap, std::max(selection.x, edgeGap));
    const bool fitsBelow = selection.y - labelHeight - labelGap >= edgeGap;
    const double y = fitsBelow ? selection.y - labelHeight - labelGap
                               : std::min(maxY(selection) + labelGap, maxY(bounds) - labelHeight - edgeGap);
    return {x, y, width, labelHeight};
}

HintLayout hintLayout(const Rect& bounds, Size hint, Size key) {
    const double keyWidth = std::max(std::ceil(key.width) + 12, smallestKeyBox);
    const double pillWidth = keyWidth + std::ceil(hint.width) + pillSpare;
    HintLayout layout;
    layout.pill = {midX(bounds) - pillWidth * 0.5, maxY(bounds) - pillDistanceFromTop - pillHeight, pillWidth,
                   pillHeight};
    layout.hintOrigin = {layout.pill.x + pillPadding, midY(layout.pill) - hint.height * 0.5};
    layout.keyBox = {maxX(layout.pill) - keyWidth - keyBoxInset, midY(layout.pill) - keyBoxHeight * 0.5, keyWidth,
                     keyBoxHeight};
    layout.keyOrigin = {midX(layout.keyBox) - key.width * 0.5, midY(layout.keyBox) - key.height * 0.5};
    return layout;
}

}  // namespace ovrin::capture
