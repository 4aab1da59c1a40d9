#include "platform/linux/recognition/line_piece.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <opencv2/imgproc.hpp>

namespace ovrin {
namespace {

constexpr int levelsPerChannel = 8;
constexpr double flatShare = 0.3;   // of the pixels that have about the background's colour, text being the rest
constexpr double sideShare = 0.4;   // of the height, background beside the text: less costs words at their ends
constexpr double tallestBox = 1.7;  // times the ink's height; a higher box has been stretched by its neighbours
constexpr int inkLevel = 96;        // of 255: from here on a pixel belongs to a stroke

struct Background {
    cv::Scalar color;
    double share = 0;
};

// The most frequent colour, told coarsely, then averaged.
Background backgroundOf(const cv::Mat& bgr) {
    constexpr int bucketWidth = 256 / levelsPerChannel;
    std::array<int, std::size_t{levelsPerChannel} * levelsPerChannel * levelsPerChannel> counts{};
    std::array<cv::Vec3f, counts.size()> sums{};
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            const auto& pixel = row[x];
            const int coarse = (pixel[0] / bucketWidth * levelsPerChannel + pixel[1] / bucketWidth) * levelsPerChannel +
                               pixel[2] / bucketWidth;
            const auto bucket = static_cast<std::size_t>(coarse);
            ++counts[bucket];
            sums[bucket] += cv::Vec3f(pixel);
        }
    }
    const auto best = static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
    Background background;
    const cv::Vec3f color = sums[best] / static_cast<float>(counts[best]);
    background.color = {color[0], color[1], color[2]};
    int near = 0;
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            if (cv::norm(cv::Vec3f(row[x]) - color, cv::NORM_INF) < 12) ++near;
        }
    }
    background.share = near / static_cast<double>(bgr.total());
    return background;
}

// The colours above and below the text, column by column, averaged along the line and blended between top and bottom:
// what lies behind text on a gradient.
cv::Mat blendedBackground(const cv::Mat& bgr, const cv::Rect& box) {
    cv::Mat top, bottom;
    const int rows = std::max(1, box.height / 12);
    cv::reduce(bgr.rowRange(box.y, box.y + rows), top, 0, cv::REDUCE_AVG, CV_32F);
    cv::reduce(bgr.rowRange(box.br().y - rows, box.br().y), bottom, 0, cv::REDUCE_AVG, CV_32F);
    cv::blur(top, top, {box.height, 1}, {-1, -1}, cv::BORDER_REPLICATE);
    cv::blur(bottom, bottom, {box.height, 1}, {-1, -1}, cv::BORDER_REPLICATE);
    cv::Mat background(bgr.size(), CV_8UC3);
    for (int y = 0; y < bgr.rows; ++y) {
        const float share =
            std::clamp((static_cast<float>(y - box.y) + 0.5F) / static_cast<float>(box.height), 0.0F, 1.0F);
        cv::Mat row = background.row(y);
        cv::Mat(top * (1 - share) + bottom * share).convertTo(row, CV_8U);
    }
    return background;
}

double shareNear(const cv::Mat& bgr, const cv::Mat& background) {
    cv::Mat distance;
    cv::absdiff(bgr, background, distance);
    cv::Mat near;
    cv::inRange(distance, cv::Scalar(0, 0, 0), cv::Scalar(12, 12, 12), near);
    return cv::countNonZero(near) / static_cast<double>(bgr.total());
}

// How far each pixel is from the background, the strongest text colour of the box being 255.
cv::Mat inkOf(const cv::Mat& bgr, const cv::Mat& background, const cv::Rect& box) {
    cv::Mat difference;
    cv::absdiff(bgr, background, difference);
    cv::Mat channels[3];
    cv::split(difference, channels);
    cv::Mat ink = cv::max(cv::max(channels[0], channels[1]), channels[2]);
    std::array<int, 256> histogram{};
    for (int y = box.y; y < box.br().y; ++y) {
        const auto* row = ink.ptr<std::uint8_t>(y);
        for (int x = box.x; x < box.br().x; ++x) ++histogram[row[x]];
    }
    // The strongest percent decides what full ink is; a blank piece must not be stretched into noise.
    int strongest = 255;
    int seen = 0;
    while (strongest > 24 && (seen += histogram[static_cast<std::size_t>(strongest)]) < box.area() / 100) --strongest;
    ink.convertTo(ink, CV_8U, 255.0 / strongest);
    return ink;
}

// Runs of positions for which holds(position) is true.
template <typename Predicate>
std::vector<ColumnRun> runsWhere(int count, Predicate holds) {
    std::vector<ColumnRun> runs;
    for (int position = 0; position < count; ++position) {
        if (!holds(position)) continue;
        if (runs.empty() || runs.back().right != position) runs.push_back({position, position});
        runs.back().right = position + 1;
    }
    return runs;
}

// The rows of the line itself: the band of ink through the middle of the box, with the marks that stand close above or
// below it. Neighbouring lines reach into the box where lines are set tightly.
ColumnRun rowsOfLine(const cv::Mat& strokes, const cv::Rect& box) {
    const auto bands =
        runsWhere(strokes.rows, [&](int y) { return cv::countNonZero(strokes(cv::Rect(box.x, y, box.width, 1))) > 0; });
    ColumnRun line;
    const int middle = box.y + box.height / 2;
    const int quarter = std::max(1, box.height / 4);
    for (const auto& band : bands) {
        const bool central = band.left < middle + quarter && band.right > middle - quarter;
        if (!central) continue;
        if (line.width() == 0) line = band;
        line.right = band.right;
    }
    for (const auto& band : bands) {  // dots and accents
        const int gap = std::max(band.left - line.right, line.left - band.right);
        const bool small = band.width() <= std::max(2, line.width() / 3);
        const bool inside = band.left >= box.y && band.right <= box.br().y;
        if (line.width() > 0 && gap >= 0 && gap <= std::max(1, line.width() / 5) && small && inside) {
            line = {std::min(line.left, band.left), std::max(line.right, band.right)};
        }
    }
    return line;
}

bool isRuler(const cv::Mat& strokes, const ColumnRun& run, const ColumnRun& rows) {
    if (run.width() > std::max(2, rows.width() / 6)) return false;
    if (strokes.rows <= rows.width() + 2) return false;
    return cv::countNonZero(strokes.colRange(run.left, run.right)) >= 0.95 * strokes.rows * run.width();
}

// The columns of the line: those of the box, and beyond its sides as long as ink follows closely.
std::vector<ColumnRun> columnsOfLine(const cv::Mat& strokes, const cv::Rect& box, const ColumnRun& rows) {
    const cv::Mat line = strokes.rowRange(rows.left, rows.right);
    auto runs = runsWhere(line.cols, [&](int x) { return cv::countNonZero(line.col(x)) > 0; });
    std::erase_if(runs, [&](const ColumnRun& run) { return isRuler(strokes, run, rows); });
    const double reach = std::max(0.4 * rows.width(), 0.25 * box.height);
    auto first = std::find_if(runs.begin(), runs.end(), [&](const ColumnRun& run) { return run.right > box.x; });
    auto last =
        std::find_if(runs.rbegin(), runs.rend(), [&](const ColumnRun& run) { return run.left < box.br().x; }).base();
    if (first >= last) return {};
    while (first != runs.begin() && first->left - std::prev(first)->right <= reach) --first;
    while (last != runs.end() && last->left - std::prev(last)->right <= reach) ++last;
    return {first, last};
}

LinePiece noisyPiece(const cv::Mat& picture, cv::Rect box) {
    LinePiece piece;
    const int aside = box.height / 4;
    box = cv::Rect(box.x - aside, box.y, box.width + 2 * aside, box.height) & cv::Rect({}, picture.size());
    piece.box = box;
    cv::cvtColor(picture(box), piece.color, cv::COLOR_BGRA2BGR);
    // Nothing but the letters has one and the same colour: what is near it is ink.
    const cv::Mat text(piece.color.size(), CV_8UC3, backgroundOf(piece.color).color);
    piece.ink = 255 - inkOf(piece.color, text, cv::Rect({}, text.size()));
    piece.runs = {{0, box.width}};
    piece.em = 0.8 * box.height;
    return piece;
}

LinePiece cutUpright(const cv::Mat& picture, cv::Rect box) {
    const int aside = box.height;
    const int above = std::max(1, box.height / 6);
    cv::Rect strip = cv::Rect(box.x - aside, box.y - above, box.width + 2 * aside, box.height + 2 * above) &
                     cv::Rect({}, picture.size());
    cv::Rect inner = box - strip.tl();
    cv::Mat bgr;
    cv::cvtColor(picture(strip), bgr, cv::COLOR_BGRA2BGR);
    const Background plain = backgroundOf(bgr(inner));
    cv::Mat background(bgr.size(), CV_8UC3, plain.color);
    if (plain.share < flatShare) {
        background = blendedBackground(bgr, inner);
        if (shareNear(bgr(inner), background(inner)) < flatShare) return noisyPiece(picture, box);
        // What lies behind the text is known only inside of the box.
        bgr = bgr(inner).clone();
        background = background(inner).clone();
        strip = box;
        inner = cv::Rect({}, box.size());
    }
    const cv::Mat ink = inkOf(bgr, background, inner);
    const cv::Mat strokes = ink >= inkLevel;
    const ColumnRun rows = rowsOfLine(strokes, inner);
    LinePiece piece;
    piece.flatBackground = true;
    if (rows.width() > 0) piece.runs = columnsOfLine(strokes, inner, rows);
    if (piece.runs.empty()) {
        piece.box = box;
        piece.color = bgr(inner).clone();
        piece.ink = ink(inner).clone();
        return piece;
    }
    const cv::Rect text(piece.runs.front().left, rows.left, piece.runs.back().right - piece.runs.front().left,
                        rows.width());
    // The network likes the height of the box that was found, unless neighbouring lines have stretched that.
    const auto widest = std::ranges::max_element(piece.runs, {}, &ColumnRun::width);
    const double height =
        std::clamp<double>(box.height, text.height, std::max(tallestBox * text.height, 1.0 * widest->width()));
    const int margin = std::max(2, static_cast<int>(std::lround((height - text.height) / 2)));
    const int side = std::max(2, static_cast<int>(std::lround(sideShare * height)));
    cv::Mat around = background(text);
    cv::copyMakeBorder(bgr(text), piece.color, margin, margin, side, side, cv::BORDER_CONSTANT | cv::BORDER_ISOLATED,
                       cv::mean(around));
    cv::copyMakeBorder(ink(text), piece.ink, margin, margin, side, side, cv::BORDER_CONSTANT | cv::BORDER_ISOLATED,
                       cv::Scalar(0));
    piece.box = text + strip.tl();
    // Text without capitals or descenders covers less than the font's size; the detected box knows better then.
    piece.em = std::max(1.08 * text.height, 0.75 * height);
    piece.inkBox = {side, margin, text.width, text.height};
    for (auto& run : piece.runs) run = {run.left - text.x + side, run.right - text.x + side};
    return piece;
}

// A part of the picture in which the region's text is upright, and the text's box in it.
std::pair<cv::Mat, cv::Rect> uprightPart(const cv::Mat& picture, const TextRegion& region, Turn turn) {
    if (!region.slant.size.empty()) {
        const cv::Size2f& size = region.slant.size;
        const int margin = static_cast<int>(std::ceil(size.height));
        const cv::Rect box(margin, margin, static_cast<int>(std::ceil(size.width)),
                           static_cast<int>(std::ceil(size.height)));
        cv::Mat turned = cv::getRotationMatrix2D(region.slant.center, region.slant.angle, 1);
        turned.at<double>(0, 2) += box.x + size.width / 2.0 - region.slant.center.x;
        turned.at<double>(1, 2) += box.y + size.height / 2.0 - region.slant.center.y;
        cv::Mat part;
        cv::warpAffine(picture, part, turned, {box.width + 2 * margin, box.height + 2 * margin}, cv::INTER_CUBIC,
                       cv::BORDER_REPLICATE);
        return {part, box};
    }
    const int margin = std::min(region.box.width, region.box.height);
    const cv::Rect around = cv::Rect(region.box.x - margin, region.box.y - margin, region.box.width + 2 * margin,
                                     region.box.height + 2 * margin) &
                            cv::Rect({}, picture.size());
    const cv::Rect box = region.box - around.tl();
    cv::Mat part;
    switch (turn) {
        case Turn::none:
            return {picture(around), box};
        case Turn::counterclockwise:
            cv::rotate(picture(around), part, cv::ROTATE_90_COUNTERCLOCKWISE);
            return {part, {box.y, around.width - box.br().x, box.height, box.width}};
        case Turn::clockwise:
            cv::rotate(picture(around), part, cv::ROTATE_90_CLOCKWISE);
            return {part, {around.height - box.br().y, box.x, box.height, box.width}};
        case Turn::half:
            cv::rotate(picture(around), part, cv::ROTATE_180);
            return {part, {around.width - box.br().x, around.height - box.br().y, box.width, box.height}};
    }
    return {};
}

}  // namespace

LinePiece cutLinePiece(const cv::Mat& picture, const TextRegion& region, Turn turn) {
    if (turn == Turn::none && region.slant.size.empty()) return cutUpright(picture, region.box);
    const auto [part, box] = uprightPart(picture, region, turn);
    LinePiece piece = cutUpright(part, box);
    piece.turn = turn;
    piece.box = region.box;
    return piece;
}

}  // namespace ovrin
