#include "platform/linux/recognition/text_detector.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

constexpr int strideOfNetwork = 32;   // its input sides are multiples of this
constexpr int marginAroundPicture = 16;  // text that touches the border of a tight crop is not seen otherwise
constexpr int tileHeight = 448;
constexpr int tileOverlap = 32;
constexpr float textThreshold = 0.3F;
constexpr float minimumScore = 0.5F;
constexpr double growth = 1.6;  // the network marks a shrunken core of each line

int roundedUp(int value, int multiple) { return (value + multiple - 1) / multiple * multiple; }

Tensor networkInput(const cv::Mat& bgr) {
    constexpr std::array<float, 3> mean = {0.485F, 0.456F, 0.406F};
    constexpr std::array<float, 3> deviation = {0.229F, 0.224F, 0.225F};
    const auto plane = static_cast<std::size_t>(bgr.rows) * static_cast<std::size_t>(bgr.cols);
    Tensor tensor{{1, 3, bgr.rows, bgr.cols}, std::vector<float>(plane * 3)};
    std::array<std::array<float, 256>, 3> table{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::size_t level = 0; level < 256; ++level) {
            table[channel][level] = (static_cast<float>(level) / 255.0F - mean[channel]) / deviation[channel];
        }
    }
    std::size_t index = 0;
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x, ++index) {
            for (int channel = 0; channel < 3; ++channel) {
                tensor.values[static_cast<std::size_t>(channel) * plane + index] =
                    table[static_cast<std::size_t>(channel)][row[x][channel]];
            }
        }
    }
    return tensor;
}

// Where words stand closely the network's regions run into each other: one piece is read better than two halves.
std::vector<TextRegion> joinOverlapping(std::vector<TextRegion> regions) {
    for (std::size_t i = 0; i < regions.size(); ++i) {
        for (std::size_t j = i + 1; j < regions.size();) {
            const cv::Rect& a = regions[i].box;
            const cv::Rect& b = regions[j].box;
            const int sharedHeight = std::min(a.br().y, b.br().y) - std::max(a.y, b.y);
            const int gap = std::max(a.x, b.x) - std::min(a.br().x, b.br().x);
            const bool join = sharedHeight > 0.6 * std::max(a.height, b.height) && gap < 0;
            if (!join) {
                ++j;
                continue;
            }
            regions[i].box |= b;
            regions[i].score = std::max(regions[i].score, regions[j].score);
            regions.erase(regions.begin() + static_cast<std::ptrdiff_t>(j));
            j = i + 1;
        }
    }
    return regions;
}

}  // namespace

TextDetector::TextDetector(const std::filesystem::path& modelFile) : network_(modelFile) {}

cv::Mat TextDetector::textProbability(const cv::Mat& picture, double scale, const std::stop_token& stop) const {
    cv::Mat scaled;
    if (scale != 1) {
        cv::resize(picture, scaled, {}, scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    } else {
        scaled = picture;
    }
    cv::Mat padded;
    const int right = roundedUp(scaled.cols + 2 * marginAroundPicture, strideOfNetwork) - scaled.cols - marginAroundPicture;
    const int bottom =
        roundedUp(scaled.rows + 2 * marginAroundPicture, strideOfNetwork) - scaled.rows - marginAroundPicture;
    cv::copyMakeBorder(scaled, padded, marginAroundPicture, bottom, marginAroundPicture, right, cv::BORDER_REPLICATE);

    cv::Mat probability(padded.size(), CV_32F, cv::Scalar(0));
    const int tiles = std::max(static_cast<int>(std::min<std::size_t>(recognitionThreads(), padded.rows / 128 + 0U)),
                               (padded.rows + tileHeight - 1) / tileHeight);
    const int step = roundedUp((padded.rows + tiles - 1) / std::max(1, tiles), strideOfNetwork);
    parallelFor(static_cast<std::size_t>((padded.rows + step - 1) / step), recognitionThreads(), [&](std::size_t index) {
        const int top = static_cast<int>(index) * step;
        const int end = std::min(padded.rows, top + step);
        const int from = std::max(0, top - tileOverlap);
        const int to = std::min(padded.rows, end + tileOverlap);
        cv::Mat bgr;
        cv::cvtColor(padded.rowRange(from, to), bgr, cv::COLOR_BGRA2BGR);
        Tensor output = network_.run(networkInput(bgr), stop);
        const cv::Mat map(bgr.rows, bgr.cols, CV_32F, output.values.data());
        map.rowRange(top - from, end - from).copyTo(probability.rowRange(top, end));
    });
    return probability({marginAroundPicture, marginAroundPicture, scaled.cols, scaled.rows}).clone();
}

std::vector<TextRegion> TextDetector::detect(const cv::Mat& picture, const std::stop_token& stop) const {
    const double scale = 1;
    const cv::Mat probability = textProbability(picture, scale, stop);
    const cv::Mat mask = probability > textThreshold;
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);

    std::vector<TextRegion> regions;
    for (const auto& contour : contours) {
        const cv::Rect core = cv::boundingRect(contour);
        if (std::min(core.width, core.height) < 3) continue;
        const auto score = static_cast<float>(cv::mean(probability(core), mask(core))[0]);
        if (score < minimumScore) continue;
        const double grow = core.area() * growth / (2.0 * (core.width + core.height));
        const cv::Rect2d grown(core.x - grow, core.y - grow, core.width + 2 * grow, core.height + 2 * grow);
        const cv::Rect box(static_cast<int>(std::floor(grown.x / scale)), static_cast<int>(std::floor(grown.y / scale)),
                           static_cast<int>(std::ceil(grown.width / scale)),
                           static_cast<int>(std::ceil(grown.height / scale)));
        regions.push_back({box & cv::Rect({}, picture.size()), score});
    }
    return joinOverlapping(std::move(regions));
}

}  // namespace ovrin
