#include "platform/linux/recognition/line_piece.h"

#include <array>
#include <cmath>
#include <functional>
#include <iterator>

#include <opencv2/imgproc.hpp>

namespace ovrin {
namespace {

constexpr int near = 12;           // levels of 255: about the same colour
constexpr double flatShare = 0.3;  // of the pixels that have about the background's colour, text being the rest
constexpr double sideShare = 0.4;  // of the height, background beside the text: less costs words at their ends
// Times the ink's height. Of 1.7 to 2.2 and no bound at all, on 86 pictures and forty drawn controls, the one that is
// best on the whole for both networks.
constexpr double tallestBox = 1.85;
constexpr int inkLevel = 96;  // of 255: from here on a pixel belongs to a stroke
// Times the height that the detector found. Of 1 to 1.25, on the lines of 88 pictures, the one with fewest errors.
constexpr double wantedHeight = 1.04;

// The most frequent colour, told coarsely, then averaged.
cv::Scalar backgroundOf(const cv::Mat3b& bgr) {
    std::array<cv::Vec4d, 512> sums{};  // of the pixels of one coarse colour; the last is their number
    for (const auto& pixel : bgr)
        sums[pixel[0] / 32U * 64 + pixel[1] / 32U * 8 + pixel[2] / 32U] += cv::Vec4d(pixel[0], pixel[1], pixel[2], 1);
    const auto most = std::ranges::max_element(sums, {}, [](const cv::Vec4d& sum) { return sum[3]; });
    return cv::Scalar((*most)[0], (*most)[1], (*most)[2]) / (*most)[3];
}

// How far each pixel is from the background.
cv::Mat1b distanceFrom(const cv::Scalar& background, const cv::Mat& bgr) {
    cv::Mat difference, distance;
    cv::absdiff(bgr, background, difference);
    cv::reduce(difference.reshape(1, static_cast<int>(bgr.total())), distance, 1, cv::REDUCE_MAX);
    return distance.reshape(1, bgr.rows);
}

// The distances, the strongest text colour of the box being 255.
cv::Mat inkOf(const cv::Mat1b& distance, const cv::Rect& box) {
    // The strongest percent decides what full ink is; a blank piece must not be stretched into noise.
    constexpr int weakest = 24;
    const cv::Mat1b within = distance(box);
    std::vector<std::uint8_t> levels(within.begin(), within.end());
    const auto strongest = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 100);
    std::ranges::nth_element(levels, strongest, std::greater());
    cv::Mat ink;
    distance.convertTo(ink, CV_8U, 255.0 / std::max<int>(weakest, *strongest));
    return ink;
}

enum class Along { columns, rows };

// The columns, or the rows, that hold strokes.
std::vector<ColumnRun> runsOf(const cv::Mat& strokes, Along along) {
    cv::Mat1b profile;
    cv::reduce(strokes, profile, static_cast<int>(along), cv::REDUCE_MAX);
    std::vector<ColumnRun> runs;
    int position = -1;
    for (const auto level : profile) {
        ++position;
        if (level == 0) continue;
        if (runs.empty() || runs.back().right != position) runs.push_back({position, position});
        runs.back().right = position + 1;
    }
    return runs;
}

// The rows of the line itself: the band of ink through the middle of the box, with the marks that stand close above or
// below it. Neighbouring lines reach into the box where lines are set tightly.
ColumnRun rowsOfLine(const cv::Mat& strokes, const cv::Rect& box) {
    const auto bands = runsOf(strokes.colRange(box.x, box.br().x), Along::rows);
    ColumnRun line;
    const int middle = box.y + box.height / 2;
    const int quarter = std::max(1, box.height / 4);
    for (const auto& band : bands) {
        if (band.left >= middle + quarter || band.right <= middle - quarter) continue;
        if (line.width() == 0) line = band;
        line.right = band.right;
    }
    for (const auto& band : bands) {  // dots and accents
        const int gap = std::max(band.left - line.right, line.left - band.right);
        const bool small = band.width() <= std::max(2, line.width() / 3);
        const bool inside = band.left >= box.y && band.right <= box.br().y;
        if (line.width() > 0 && gap >= 0 && gap <= std::max(1, line.width() / 5) && small && inside)
            line = {std::min(line.left, band.left), std::max(line.right, band.right)};
    }
    return line;
}

// The columns of the line: those of the box, and beyond its sides as long as ink follows closely.
std::vector<ColumnRun> columnsOfLine(const cv::Mat& strokes, const cv::Rect& box, const ColumnRun& rows) {
    const auto runs = runsOf(strokes.rowRange(rows.left, rows.right), Along::columns);
    const double reach = std::max(0.4 * rows.width(), 0.35 * box.height);
    auto first = std::ranges::find_if(runs, [&](const ColumnRun& run) { return run.right > box.x; });
    auto last = std::ranges::find_if(first, runs.end(), [&](const ColumnRun& run) { return run.left >= box.br().x; });
    if (first == last) return {};
    while (first != runs.begin() && first->left - std::prev(first)->right <= reach) --first;
    while (last != runs.end() && last->left - std::prev(last)->right <= reach) ++last;
    return {first, last};
}

// Text on a picture or a gradient.
LinePiece noisyPiece(const cv::Mat& picture, cv::Rect box) {
    LinePiece piece;
    const int aside = box.height / 4;
    piece.box = cv::Rect(box.x - aside, box.y, box.width + 2 * aside, box.height) & cv::Rect({}, picture.size());
    cv::cvtColor(picture(piece.box), piece.color, cv::COLOR_BGRA2BGR);
    // Nothing but the letters has one and the same colour: what is near it is ink.
    piece.ink = 255 - inkOf(distanceFrom(backgroundOf(piece.color), piece.color), cv::Rect({}, piece.color.size()));
    piece.runs = {{0, piece.box.width}};
    piece.em = 0.8 * box.height;
    return piece;
}

LinePiece cutUpright(const cv::Mat& picture, const cv::Rect& box) {
    const int above = std::max(1, box.height / 6);
    const cv::Rect strip =
        cv::Rect(box.x - box.height, box.y - above, box.width + 2 * box.height, box.height + 2 * above) &
        cv::Rect({}, picture.size());
    const cv::Rect inner = box - strip.tl();
    cv::Mat bgr;
    cv::cvtColor(picture(strip), bgr, cv::COLOR_BGRA2BGR);
    const cv::Scalar background = backgroundOf(bgr(inner));
    const cv::Mat1b distance = distanceFrom(background, bgr);
    if (cv::mean(distance(inner) <= near)[0] < flatShare * 255) return noisyPiece(picture, box);
    const cv::Mat ink = inkOf(distance, inner);
    const cv::Mat strokes = ink >= inkLevel;
    const ColumnRun rows = rowsOfLine(strokes, inner);
    LinePiece piece;
    piece.flatBackground = true;
    if (rows.width() > 0) piece.runs = columnsOfLine(strokes, inner, rows);
    if (piece.runs.empty()) return piece;
    const cv::Rect text(piece.runs.front().left, rows.left, piece.runs.back().right - piece.runs.front().left,
                        rows.width());
    // The network likes the height of the box that was found, unless neighbouring lines have stretched that.
    const double height = std::clamp<double>(box.height, text.height, tallestBox * text.height);
    const int margin = std::max(2, static_cast<int>(std::lround((wantedHeight * height - text.height) / 2)));
    const int side = std::max(2, static_cast<int>(std::lround(sideShare * height)));
    constexpr int border = cv::BORDER_CONSTANT | cv::BORDER_ISOLATED;
    cv::copyMakeBorder(bgr(text), piece.color, margin, margin, side, side, border, background);
    cv::copyMakeBorder(ink(text), piece.ink, margin, margin, side, side, border);
    piece.box = text + strip.tl();
    // Text without capitals or descenders covers less than the font's size; the detected box knows better then.
    piece.em = std::max(1.08 * text.height, 0.75 * height);
    piece.inkBox = {side, margin, text.width, text.height};
    for (auto& run : piece.runs) run = {run.left - text.x + side, run.right - text.x + side};
    return piece;
}

}  // namespace

Turn opposite(Turn turn) {
    return turn == Turn::clockwise ? Turn::counterclockwise : turn == Turn::counterclockwise ? Turn::clockwise : turn;
}

cv::Mat turned(const cv::Mat& picture, Turn turn) {
    cv::Mat result = picture;
    if (turn != Turn::none) cv::rotate(picture, result, static_cast<int>(turn));
    return result;
}

cv::Rect turned(const cv::Rect& box, Turn turn, const cv::Size& size) {
    const cv::Point beyond = cv::Point(size) - box.br();
    if (turn == Turn::none) return box;
    if (turn == Turn::half) return {beyond, box.size()};
    return {turn == Turn::clockwise ? cv::Point(beyond.y, box.x) : cv::Point(box.y, beyond.x),
            cv::Size(box.height, box.width)};
}

LinePiece cutLinePiece(const cv::Mat& picture, const cv::Rect& box, Turn turn) {
    if (turn == Turn::none) return cutUpright(picture, box);
    const int margin = std::min(box.width, box.height);
    const cv::Rect around = cv::Rect(box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin) &
                            cv::Rect({}, picture.size());
    LinePiece piece = cutUpright(turned(picture(around), turn), turned(box - around.tl(), turn, around.size()));
    piece.turn = turn;
    piece.box = box;
    return piece;
}

}  // namespace ovrin
