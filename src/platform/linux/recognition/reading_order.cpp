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
            return std::any_of(row.begin(), row.end(), [&](std::size_t other) { return onSameRow(boxes[index], boxes[other]); }) &&
                   std::none_of(row.begin(), row.end(), [&](std::size_t other) {
                       const int shared = std::min(boxes[index].br().x, boxes[other].br().x) - std::max(boxes[index].x, boxes[other].x);
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

// The left edge of a column to the right of a clean gutter, when both sides are text that fills its width line after
// line: then the two are columns and not the cells of a table or form.
std::optional<int> columnGutter(const std::vector<cv::Rect>& boxes, const std::vector<TextRow>& rows) {
    if (rows.size() < 2) return std::nullopt;
    int left = boxes[rows[0][0]].x, right = 0;
    std::vector<int> candidates;
    for (const auto& row : rows) {
        for (const std::size_t index : row) {
            left = std::min(left, boxes[index].x);
            right = std::max(right, boxes[index].br().x);
            candidates.push_back(boxes[index].x);
        }
    }
    for (const int edge : candidates) {
        int leftEnd = 0;
        std::size_t leftLines = 0, rightLines = 0, both = 0;
        double leftFill = 0, rightFill = 0, height = 0;
        bool clean = true;
        for (const auto& row : rows) {
            for (const std::size_t index : row) {
                if (boxes[index].x < edge && boxes[index].br().x > edge) clean = false;
                if (boxes[index].x < edge) leftEnd = std::max(leftEnd, boxes[index].br().x);
            }
        }
        if (!clean || leftEnd == 0) continue;
        for (const auto& row : rows) {
            bool onLeft = false, onRight = false;
            for (const std::size_t index : row) {
                height += boxes[index].height;
                if (boxes[index].x < edge) {
                    leftFill += boxes[index].width;
                    onLeft = true;
                } else {
                    rightFill += boxes[index].width;
                    onRight = true;
                }
            }
            leftLines += onLeft ? 1 : 0;
            rightLines += onRight ? 1 : 0;
            both += onLeft && onRight ? 1 : 0;
        }
        if (both < 2) continue;
        height /= static_cast<double>(std::accumulate(rows.begin(), rows.end(), std::size_t{0},
                                                      [](std::size_t sum, const TextRow& row) { return sum + row.size(); }));
        const int leftWidth = leftEnd - left, rightWidth = right - edge;
        const bool wide = leftWidth > 8 * height && rightWidth > 8 * height && edge - leftEnd > 0.6 * height;
        const bool filled = leftFill > 0.7 * leftWidth * static_cast<double>(leftLines) && rightFill > 0.7 * rightWidth * static_cast<double>(rightLines);
        if (wide && filled) return edge;
    }
    return std::nullopt;
}

}  // namespace

std::vector<TextRow> readingOrder(const std::vector<cv::Rect>& boxes) {
    Indices all(boxes.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const auto rows = rowsOf(boxes, all);
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
