// Finds where text is in a picture: one region for each run of text on one visual line.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/inference_session.h"

namespace ovrin {

// A piece of one line. Pixels of the whole picture, origin at its upper-left corner.
struct TextRegion {
    cv::Rect box;           // upright, around the text
    cv::RotatedRect slant;  // of a line that runs aslant: its own box, the angle within 45 degrees; else of no size
    float score = 0;        // 0..1, how sure the network is that this is text
};

class TextDetector {
public:
    explicit TextDetector(const std::filesystem::path& modelFile);

    // The regions of a picture of four bytes a pixel (blue, green, red, unused), in no particular order; at most
    // mostRegions, the surest.
    std::vector<TextRegion> detect(const cv::Mat& picture, const std::stop_token& stop) const;

    static constexpr std::size_t mostRegions = 4000;

private:
    cv::Mat textProbability(const cv::Mat& picture, const cv::Rect& area, double scale,
                            const std::stop_token& stop) const;

    double scaleFor(const cv::Mat& picture, const cv::Rect& area, const std::stop_token& stop) const;

    InferenceSession network_;
};

}  // namespace ovrin
