// One piece of a line cut out of the picture, with its text told from its background.
#pragma once

#include <vector>

#include <opencv2/core.hpp>

namespace ovrin {

// Columns from left up to right, pixels from the piece's left edge.
struct ColumnRun {
    int left = 0;
    int right = 0;
    int width() const { return right - left; }
};

struct LinePiece {
    cv::Rect box;                // pixels of the whole picture
    cv::Mat color;               // blue, green, red
    cv::Mat ink;                 // one byte a pixel, 0 background to 255 text
    cv::Rect inkBox;             // what the text covers, pixels from the piece's upper-left corner; may be empty
    std::vector<ColumnRun> runs; // the columns that hold ink, left to right
    bool flatBackground = false; // one colour behind the text: ink and runs can be relied on

    // Where there is no ink: the widest blank between two positions.
    ColumnRun widestGap(double from, double to) const;
};

// Cuts the box out of a picture of four bytes a pixel. Ink that the box's sides cut through widens it.
LinePiece cutLinePiece(const cv::Mat& picture, cv::Rect box);

}  // namespace ovrin
