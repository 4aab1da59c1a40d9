// Reads one piece of a line with the Chinese and English network.
#pragma once

#include <filesystem>
#include <stop_token>
#include <string>
#include <unordered_set>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/linux/recognition/inference_session.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

class LineRecognizer {
public:
    LineRecognizer(const std::filesystem::path& modelFile, const std::filesystem::path& characterFile);

    // line: the piece cut out, three bytes a pixel (blue, green, red).
    Reading read(const cv::Mat& line, const std::stop_token& stop) const;

    // Whether the network can name this character at all.
    bool knows(char32_t character) const { return known_.contains(character); }

private:
    InferenceSession network_;
    std::vector<char32_t> characters_;  // by the network's class, from class 1; the last one is the space
    std::unordered_set<char32_t> known_;
};

}  // namespace ovrin
