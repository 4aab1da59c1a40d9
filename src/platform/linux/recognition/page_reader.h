// Reads all text of one picture: finds its lines, cuts them out, reads them, and leaves out what is no text.
#pragma once

#include <future>
#include <memory>
#include <span>
#include <stop_token>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/second_reader.h"
#include "platform/linux/recognition/text_detector.h"

namespace ovrin {

// What a page is read with; none of them is owned. The network may still be loading while lines are looked for.
struct PageReaders {
    const TextDetector& detector;
    std::shared_future<std::unique_ptr<LineRecognizer>> network;
    std::span<SecondReader* const> secondReaders;
};

// Pieces of lines, in no particular order, none without a reading. picture: four bytes a pixel (blue, green, red,
// unused). CancellationError after a stop.
std::vector<LinePiece> readPage(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop);

}  // namespace ovrin
