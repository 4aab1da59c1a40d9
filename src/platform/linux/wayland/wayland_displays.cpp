#include "platform/linux/wayland/wayland_displays.h"

#include <algorithm>
#include <cmath>

#include "base/error.h"

namespace ovrin {
namespace {

// The size in points has been rounded to whole ones. Compositors scale by multiples of 1/120: one that explains the
// size is the scale.
double scaleFactorOf(const WaylandOutput& output) {
    constexpr double steps = 120;
    const double pixels = std::max(output.modeWidth, output.modeHeight);
    const double points = std::max(output.frame.width, output.frame.height);
    if (pixels <= 0 || points <= 0) return 1;
    const double likely = std::round(pixels / points * steps) / steps;
    return likely > 0 && std::abs(pixels / likely - points) < 1 ? likely : pixels / points;
}

DisplayRect toDisplaySpace(const Rect<LayoutPoints>& rect, const Rect<LayoutPoints>& primary) {
    const auto points = [](int number) { return static_cast<double>(number); };
    return {points(rect.x - primary.x), points(rect.y - primary.y), points(rect.width), points(rect.height)};
}

// Of one dimension: the pixels that were meant, held inside of the output, whose size may be less than they were
// computed from by a pixel.
int firstPixel(double point, double scaleFactor, int count, double points) {
    const int last = static_cast<int>(std::lround(points * scaleFactor)) - count;
    return std::clamp(static_cast<int>(std::lround(point * scaleFactor)), 0, std::max(0, last));
}

}  // namespace

std::vector<CapturableDisplay> displaysOf(const WaylandConnection& connection) {
    std::vector<CapturableDisplay> displays;
    if (connection.outputs().empty()) return displays;
    const Rect<LayoutPoints> primary = connection.outputs().front().frame;
    for (const WaylandOutput& output : connection.outputs()) {
        displays.push_back({.id = DisplayId{output.number},
                            .frame = toDisplaySpace(output.frame, primary),
                            .scaleFactor = scaleFactorOf(output)});
    }
    return displays;
}

const WaylandOutput& outputOf(const WaylandConnection& connection, DisplayId display) {
    const auto found = std::ranges::find(connection.outputs(), display,
                                         [](const WaylandOutput& output) { return DisplayId{output.number}; });
    if (found == connection.outputs().end()) throw Error("无法截取屏幕：显示器已断开。");
    return *found;
}

PictureArea pictureAreaOf(const WaylandOutput& output, const ScreenshotRequest& request) {
    const double scaleFactor = scaleFactorOf(output);
    const LocalRect& source = request.sourceRect;
    const Rect<OutputPoints> whole{0, 0, output.frame.width, output.frame.height};
    Rect<OutputPoints> points = whole;
    if (scaleFactor == std::floor(scaleFactor) && output.transform == WL_OUTPUT_TRANSFORM_NORMAL) {
        const int left = static_cast<int>(std::floor(source.x));
        const int top = static_cast<int>(std::floor(source.y));
        points = intersection({left, top, static_cast<int>(std::ceil(source.maxX())) - left,
                               static_cast<int>(std::ceil(source.maxY())) - top},
                              whole);
        if (points.isEmpty()) points = whole;
    }
    const auto pixels = [scaleFactor](int count) { return static_cast<int>(std::lround(count * scaleFactor)); };
    return {.points = points,
            .isWholeOutput = points == whole,
            .pixels = {firstPixel(source.x, scaleFactor, request.width, output.frame.width) - pixels(points.x),
                       firstPixel(source.y, scaleFactor, request.height, output.frame.height) - pixels(points.y),
                       request.width, request.height}};
}

}  // namespace ovrin
