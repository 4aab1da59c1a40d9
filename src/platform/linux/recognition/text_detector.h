// Finds where text is in a picture: one region for each run of text on one visual line.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/inference_session.h"

namespace ovrin {

class TextDetector {
public:
    explicit TextDetector(const std::filesystem::path& modelFile);

    // Boxes around pieces of lines in a picture of four bytes a pixel (blue, green, red, unused), in no particular
    // order: pixels, origin at the upper-left corner; at most mostRegions, those that the network is surest of.
    std::vector<cv::Rect> detect(const cv::Mat& picture, const std::stop_token& stop) const;

    static constexpr std::size_t mostRegions = 4000;

private:
    InferenceSession network_;
};

}  // namespace ovrin
