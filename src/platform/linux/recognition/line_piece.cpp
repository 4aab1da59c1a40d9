#include "platform/linux/recognition/line_piece.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

namespace ovrin {
namespace {

constexpr int levelsPerChannel = 8;
constexpr double flatShare = 0.3;  // of the pixels that have about the background's colour, text being the rest
constexpr int inkLevel = 96;       // of 255: from here on a pixel belongs to a stroke

struct Background {
    cv::Vec3f color;
    double share = 0;
};

// The most frequent colour, told coarsely, then averaged.
Background backgroundOf(const cv::Mat& bgr) {
    constexpr int bucketWidth = 256 / levelsPerChannel;
    std::array<int, levelsPerChannel * levelsPerChannel * levelsPerChannel> counts{};
    std::array<cv::Vec3f, counts.size()> sums{};
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            const auto& pixel = row[x];
            const auto bucket = static_cast<std::size_t>((pixel[0] / bucketWidth * levelsPerChannel + pixel[1] / bucketWidth) *
                                                             levelsPerChannel + pixel[2] / bucketWidth);
            ++counts[bucket];
            sums[bucket] += cv::Vec3f(pixel);
        }
    }
    const auto best = static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
    Background background;
    background.color = sums[best] / static_cast<float>(counts[best]);
    int near = 0;
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            if (cv::norm(cv::Vec3f(row[x]) - background.color, cv::NORM_INF) < 12) ++near;
        }
    }
    background.share = near / static_cast<double>(bgr.total());
    return background;
}

// How far each pixel is from the background, the strongest text colour being 255.
cv::Mat inkOf(const cv::Mat& bgr, const Background& background) {
    cv::Mat ink(bgr.size(), CV_8U);
    std::array<int, 256> histogram{};
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        auto* target = ink.ptr<std::uint8_t>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            const auto distance = static_cast<int>(cv::norm(cv::Vec3f(row[x]) - background.color, cv::NORM_INF));
            target[x] = static_cast<std::uint8_t>(std::min(255, distance));
            ++histogram[target[x]];
        }
    }
    // The strongest percent decides what full ink is; a blank piece must not be stretched into noise.
    int strongest = 255;
    for (int seen = 0; strongest > 24 && (seen += histogram[static_cast<std::size_t>(strongest)]) < bgr.rows * bgr.cols / 100;) --strongest;
    ink.convertTo(ink, CV_8U, 255.0 / strongest);
    return ink;
}

}  // namespace

ColumnRun LinePiece::widestGap(double from, double to) const {
    ColumnRun widest;
    for (std::size_t i = 1; i < runs.size(); ++i) {
        const ColumnRun gap{runs[i - 1].right, runs[i].left};
        if (gap.right > from && gap.left < to && gap.width() > widest.width()) widest = gap;
    }
    return widest;
}

LinePiece cutLinePiece(const cv::Mat& picture, cv::Rect box) {
    LinePiece piece;
    piece.box = box;
    cv::cvtColor(picture(box), piece.color, cv::COLOR_BGRA2BGR);
    const Background background = backgroundOf(piece.color);
    piece.flatBackground = background.share >= flatShare;
    piece.ink = inkOf(piece.color, background);

    int left = -1;
    for (int x = 0; x <= box.width; ++x) {
        int count = 0;
        if (x < box.width) {
            for (int y = 0; y < box.height; ++y) count += piece.ink.at<std::uint8_t>(y, x) >= inkLevel ? 1 : 0;
        }
        if (count > 0 && left < 0) left = x;
        if (count == 0 && left >= 0) {
            piece.runs.push_back({left, x});
            left = -1;
        }
    }
    int top = box.height;
    int bottom = 0;
    for (int y = 0; y < box.height; ++y) {
        const auto* row = piece.ink.ptr<std::uint8_t>(y);
        if (std::any_of(row, row + box.width, [](std::uint8_t level) { return level >= inkLevel; })) {
            top = std::min(top, y);
            bottom = y + 1;
        }
    }
    if (!piece.runs.empty()) {
        piece.inkBox = {piece.runs.front().left, top, piece.runs.back().right - piece.runs.front().left, bottom - top};
    }
    return piece;
}

}  // namespace ovrin
