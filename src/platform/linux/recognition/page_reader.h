// Reads all text of one picture: finds its lines, cuts them out, reads them, and leaves out what is no text.
#pragma once

#include <memory>
#include <span>
#include <stop_token>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/reading.h"
#include "platform/linux/recognition/second_reader.h"
#include "platform/linux/recognition/text_detector.h"

namespace ovrin {

// What a page is read with; none of them is owned.
struct PageReaders {
    const TextDetector& detector;
    const LineRecognizer& network;
    std::span<SecondReader* const> secondReaders;
};

// Pieces of lines, in no particular order, and the reading of each, which is not empty.
struct Page {
    std::vector<LinePiece> pieces;
    std::vector<Reading> readings;
};

// picture: four bytes a pixel (blue, green, red, unused). CancellationError after a stop.
Page readPage(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop);

}  // namespace ovrin
