// Readings and pieces made by hand, for the tests of what is done with them.
#pragma once

#include <string_view>
#include <vector>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Characters side by side, each `width` pixels wide, the first at `left`.
inline Reading readingOf(std::u32string_view text, double left, double width, float confidence = 0.99F) {
    Reading reading;
    for (const char32_t character : text) {
        reading.push_back({character, confidence, left, left + width, 0});
        left += width;
    }
    return reading;
}

// A piece whose ink are full-height bars.
inline LinePiece pieceOf(const std::vector<ColumnRun>& runs, int height) {
    LinePiece piece;
    const int right = runs.empty() ? 10 : runs.back().right;
    piece.color = cv::Mat(height + 4, right + 4, CV_8UC3, cv::Scalar(255, 255, 255));
    piece.ink = cv::Mat::zeros(height + 4, right + 4, CV_8U);
    piece.runs = runs;
    if (!runs.empty()) piece.inkBox = {runs.front().left, 2, right - runs.front().left, height};
    piece.em = 1.08 * height;
    piece.flatBackground = true;
    return piece;
}

}  // namespace ovrin
