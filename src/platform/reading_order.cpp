#include "platform/reading_order.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace ovrin {
namespace {

using Indices = std::vector<std::size_t>;

bool onSameRow(const PixelRect& a, const PixelRect& b) {
    const int shared = std::min(a.maxY(), b.maxY()) - std::max(a.y, b.y);
    const auto [lower, higher] = std::minmax(a.height, b.height);
    return shared > 0.5 * lower && higher < 2.5 * lower;
}

bool isAbove(const PixelRect& a, const PixelRect& b) {
    const int shared = std::min(a.maxX(), b.maxX()) - std::max(a.x, b.x);
    return shared > std::min(a.width, b.width) / 2;
}

std::vector<TextRow> rowsOf(const std::vector<PixelRect>& boxes, Indices indices) {
    std::ranges::sort(indices, {}, [&](std::size_t index) { return boxes[index].y + boxes[index].maxY(); });
    std::vector<TextRow> rows;
    for (const std::size_t index : indices) {
        // A box joins a row only if it stands beside every box that is there already.
        const auto row = std::find_if(rows.rbegin(), rows.rend(), [&](const TextRow& others) {
            return std::ranges::any_of(others, [&](auto other) { return onSameRow(boxes[index], boxes[other]); }) &&
                   std::ranges::none_of(others, [&](auto other) { return isAbove(boxes[index], boxes[other]); });
        });
        row == rows.rend() ? rows.push_back({index}) : row->push_back(index);
    }
    for (auto& row : rows) std::ranges::sort(row, {}, [&](std::size_t index) { return boxes[index].x; });
    return rows;
}

// Running text fills its column line after line, but for headings and the ends of paragraphs; cells of tables and forms
// don't.
bool isRunningText(const std::vector<PixelRect>& boxes, const std::vector<TextRow>& rows) {
    int left = boxes[rows.front().front()].x;
    int right = left;
    double height = 0;
    for (const auto& row : rows) {
        left = std::min(left, boxes[row.front()].x);
        for (const std::size_t index : row) right = std::max(right, boxes[index].maxX());
        height += boxes[row.front()].height / static_cast<double>(rows.size());
    }
    const int width = right - left;
    const auto filled = static_cast<std::size_t>(std::ranges::count_if(
        rows, [&](const TextRow& row) { return row.size() == 1 && boxes[row.front()].width > 0.6 * width; }));
    return width > 8 * height && filled >= 2 && filled * 2 >= rows.size();
}

}  // namespace

std::vector<TextRow> readingOrder(const std::vector<PixelRect>& boxes) {
    Indices all(boxes.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    auto rows = rowsOf(boxes, all);
    std::set<int> edges;
    for (const auto& box : boxes) edges.insert(box.x);
    for (const int edge : edges) {
        Indices left, right;
        int gutter = edge;
        int height = 0;
        for (const std::size_t index : all) {
            (boxes[index].x < edge ? left : right).push_back(index);
            if (boxes[index].x < edge) gutter = std::min(gutter, edge - boxes[index].maxX());
            height += boxes[index].height;
        }
        if (left.empty() || gutter <= 0.6 * height / static_cast<double>(boxes.size())) continue;
        auto columns = rowsOf(boxes, left);
        const auto second = rowsOf(boxes, right);
        const bool standBeside = columns.size() + second.size() >= rows.size() + 2;
        if (!standBeside || !isRunningText(boxes, columns) || !isRunningText(boxes, second)) continue;
        columns.insert(columns.end(), second.begin(), second.end());
        return columns;
    }
    return rows;
}

}  // namespace ovrin
