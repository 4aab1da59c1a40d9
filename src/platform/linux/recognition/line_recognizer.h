// Reads one piece of a line with the recognition network: Chinese, Japanese, and languages in Latin letters.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/inference_session.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

class LineRecognizer {
public:
    // Throws Error that names the file when it is no such network. The characters that it knows are named by itself.
    explicit LineRecognizer(const std::filesystem::path& modelFile);

    // line: text on one line cut out, upright, three bytes a pixel (blue, green, red). Of a line much longer than high
    // the parts between its widest gaps are read one after the other.
    Reading read(const cv::Mat& line, const std::stop_token& stop) const;

private:
    Reading readPart(const cv::Mat& line, const std::stop_token& stop) const;

    InferenceSession network_;
    std::vector<char32_t> characters_;  // by the network's class; 0 for the blank
};

}  // namespace ovrin
