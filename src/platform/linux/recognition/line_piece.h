// One piece of a line cut out of the picture, with its text told from its background, and what was read of it.
#pragma once

#include <algorithm>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Columns from left up to right, pixels from the piece's left edge.
struct ColumnRun {
    int left = 0;
    int right = 0;
    int width() const { return right - left; }
    double center() const { return (left + right) / 2.0; }
    bool operator==(const ColumnRun&) const = default;
};

// How a line, or a whole page, has to be turned to be read. The numbers of turns are those of cv::RotateFlags.
enum class Turn { none = -1, clockwise = 0, half = 1, counterclockwise = 2 };

Turn opposite(Turn turn);
cv::Mat turned(const cv::Mat& picture, Turn turn);
// Where the box of a picture of this size lies once the picture is turned.
cv::Rect turned(const cv::Rect& box, Turn turn, const cv::Size& size);

struct LinePiece {
    cv::Rect box;                 // what the text covers, pixels of the whole picture
    Turn turn = Turn::none;       // what made it upright
    cv::Mat color;                // blue, green, red: the text with a margin of background around it
    cv::Mat ink;                  // of the same size, one byte a pixel, 0 background to 255 text
    cv::Rect inkBox;              // what the text covers, pixels of these two; may be empty
    std::vector<ColumnRun> runs;  // the columns of these two that hold ink, left to right
    double em = 1;                // about the font's size in pixels
    bool flatBackground = false;  // one colour lies behind the text: ink and runs can be relied on
    Reading reading;

    double glyphHeight() const { return inkBox.height > 0 ? inkBox.height : std::max(1, color.rows); }
};

// Cuts the text that was found in the box out of a picture of four bytes a pixel, upright once it is turned. Parts of
// other lines are painted over; ink that the box's sides cut through, or leave just outside, is taken in.
LinePiece cutLinePiece(const cv::Mat& picture, const cv::Rect& box, Turn turn);

}  // namespace ovrin
