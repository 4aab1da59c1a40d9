#include "platform/linux/recognition/reading_order.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace ovrin {
namespace {

using Indices = std::vector<std::size_t>;

double sharedHeight(const cv::Rect& a, const cv::Rect& b) {
    const int shared = std::min(a.br().y, b.br().y) - std::max(a.y, b.y);
    return std::max(0, shared) / static_cast<double>(std::max(1, std::min(a.height, b.height)));
}

bool onSameRow(const cv::Rect& a, const cv::Rect& b) {
    return sharedHeight(a, b) > 0.5 && std::max(a.height, b.height) < 2.5 * std::min(a.height, b.height);
}

std::vector<TextRow> rowsOf(const std::vector<cv::Rect>& boxes, Indices indices) {
    std::sort(indices.begin(), indices.end(), [&](std::size_t a, std::size_t b) {
        return boxes[a].y + boxes[a].br().y < boxes[b].y + boxes[b].br().y;
    });
    std::vector<TextRow> rows;
    for (const std::size_t index : indices) {
        // A box joins a row only if it stands beside every box that is there already.
        const auto fits = [&](const TextRow& row) {
            return std::any_of(row.begin(), row.end(),
                               [&](std::size_t other) { return onSameRow(boxes[index], boxes[other]); }) &&
                   std::none_of(row.begin(), row.end(), [&](std::size_t other) {
                       const int shared = std::min(boxes[index].br().x, boxes[other].br().x) -
                                          std::max(boxes[index].x, boxes[other].x);
                       return shared > std::min(boxes[index].width, boxes[other].width) / 2;
                   });
        };
        const auto row = std::find_if(rows.rbegin(), rows.rend(), fits);
        if (row == rows.rend()) {
            rows.push_back({index});
        } else {
            row->push_back(index);
        }
    }
    for (auto& row : rows) {
        std::sort(row.begin(), row.end(), [&](std::size_t a, std::size_t b) { return boxes[a].x < boxes[b].x; });
    }
    return rows;
}

// One side of a possible gutter.
struct Column {
    int left = 0;
    int right = 0;
    std::size_t lines = 0;
    std::vector<int> wholeLines;  // widths of the lines that are one piece

    void add(const cv::Rect& line, bool whole) {
        left = lines == 0 ? line.x : std::min(left, line.x);
        right = std::max(right, line.br().x);
        ++lines;
        if (whole) wholeLines.push_back(line.width);
    }

    // Running text fills its column line after line, but for headings and the ends of paragraphs; cells of tables and
    // forms don't.
    bool isRunningText(double lineHeight) const {
        const int width = right - left;
        const auto filled = static_cast<std::size_t>(
            std::count_if(wholeLines.begin(), wholeLines.end(), [&](int line) { return line > 0.6 * width; }));
        return width > 8 * lineHeight && filled >= 2 && filled * 2 >= lines;
    }
};

// The left edge of a column to the right of a clean gutter, when both sides are running text.
std::optional<int> columnGutter(const std::vector<cv::Rect>& boxes, const std::vector<TextRow>& rows) {
    double lineHeight = 0;
    std::vector<int> edges;
    for (const auto& box : boxes) {
        lineHeight += box.height / static_cast<double>(boxes.size());
        edges.push_back(box.x);
    }
    std::sort(edges.begin(), edges.end());
    for (const int edge : edges) {
        const bool clean = std::none_of(boxes.begin(), boxes.end(),
                                        [&](const cv::Rect& box) { return box.x < edge && box.br().x > edge; });
        if (!clean) continue;
        Column left, right;
        std::size_t both = 0;
        for (const auto& row : rows) {
            const auto middle = std::find_if(row.begin(), row.end(), [&](std::size_t i) { return boxes[i].x >= edge; });
            const auto add = [&](Column& column, TextRow::const_iterator first, TextRow::const_iterator last) {
                cv::Rect line;
                for (auto i = first; i != last; ++i) line = line.empty() ? boxes[*i] : line | boxes[*i];
                if (first != last) column.add(line, last - first == 1);
            };
            add(left, row.begin(), middle);
            add(right, middle, row.end());
            if (middle != row.begin() && middle != row.end()) ++both;
        }
        if (both >= 2 && right.left - left.right > 0.6 * lineHeight && left.isRunningText(lineHeight) &&
            right.isRunningText(lineHeight))
            return edge;
    }
    return std::nullopt;
}

}  // namespace

std::vector<TextRow> readingOrder(const std::vector<cv::Rect>& boxes) {
    Indices all(boxes.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    auto rows = rowsOf(boxes, all);
    const auto gutter = columnGutter(boxes, rows);
    if (!gutter) return rows;
    Indices left, right;
    for (const std::size_t index : all) (boxes[index].x < *gutter ? left : right).push_back(index);
    auto ordered = rowsOf(boxes, left);
    const auto second = rowsOf(boxes, right);
    ordered.insert(ordered.end(), second.begin(), second.end());
    return ordered;
}

}  // namespace ovrin
