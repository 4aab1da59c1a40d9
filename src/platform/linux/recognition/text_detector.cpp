#include "platform/linux/recognition/text_detector.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

constexpr int strideOfNetwork = 32;  // its input sides are multiples of this
constexpr int tileWidth = 1088;      // bounds the memory of one run
constexpr int tileHeight = 512;
constexpr int leastTileHeight = 96;  // below, splitting for another core costs more than it gains
constexpr int overlap = 24;          // text that touches the border of a tile or crop is not seen otherwise
constexpr int leastContrast = 10;    // between neighbouring pixels, levels of 255
constexpr float textThreshold = 0.3F;
constexpr float minimumScore = 0.5F;
constexpr double growth = 1.6;  // the network marks a shrunken core of each line

int roundedUp(int value, int multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

// The part of the picture outside of which neighbouring pixels hardly differ: there is no text there.
cv::Rect activeArea(const cv::Mat& picture) {
    if (picture.cols < 2) return {};
    int left = picture.cols, right = 0, top = picture.rows, bottom = 0;
    cv::Mat contrast;
    for (int y = 0; y < picture.rows; ++y) {
        cv::absdiff(picture(cv::Rect(1, y, picture.cols - 1, 1)), picture(cv::Rect(0, y, picture.cols - 1, 1)),
                    contrast);
        const auto* first = contrast.ptr<std::uint8_t>();
        const auto* last = first + static_cast<std::ptrdiff_t>(contrast.cols) * contrast.channels();
        const auto strong = [](std::uint8_t level) { return level >= leastContrast; };
        const auto* from = std::find_if(first, last, strong);
        if (from == last) continue;
        const auto* to = std::find_if(std::reverse_iterator(last), std::reverse_iterator(first), strong).base();
        left = std::min(left, static_cast<int>(from - first) / contrast.channels());
        right = std::max(right, static_cast<int>(to - first - 1) / contrast.channels() + 2);
        top = std::min(top, y);
        bottom = y + 1;
    }
    return right > left ? cv::Rect(left, top, right - left, bottom - top) : cv::Rect();
}

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

cv::Mat TextDetector::textProbability(const cv::Mat& picture, const cv::Rect& area, const std::stop_token& stop) const {
    const int columns = (area.width + tileWidth - 1) / tileWidth;
    const int wantedRows = columns > 1 ? 1 : static_cast<int>(recognitionThreads());
    const int rows =
        std::max((area.height + tileHeight - 1) / tileHeight, std::clamp(area.height / leastTileHeight, 1, wantedRows));
    cv::Mat probability(area.size(), CV_32F, cv::Scalar(0));
    const auto count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
    parallelFor(count, recognitionThreads(), [&](std::size_t index) {
        const int row = static_cast<int>(index) / columns;
        const int column = static_cast<int>(index) % columns;
        const cv::Rect tile(cv::Point(area.width * column / columns, area.height * row / rows),
                            cv::Point(area.width * (column + 1) / columns, area.height * (row + 1) / rows));
        // Around the tile, what the network needs to see of its surroundings; at the picture's edge, more of the edge.
        const cv::Rect wanted(tile.x + area.x - overlap, tile.y + area.y - overlap,
                              roundedUp(tile.width + 2 * overlap, strideOfNetwork),
                              roundedUp(tile.height + 2 * overlap, strideOfNetwork));
        const cv::Rect there = wanted & cv::Rect({}, picture.size());
        if (activeArea(picture(there)).empty()) return;
        cv::Mat bgr;
        cv::cvtColor(picture(there), bgr, cv::COLOR_BGRA2BGR);
        cv::copyMakeBorder(bgr, bgr, there.y - wanted.y, wanted.br().y - there.br().y, there.x - wanted.x,
                           wanted.br().x - there.br().x, cv::BORDER_REPLICATE);
        Tensor output = network_.run(networkInput(bgr), stop);
        const cv::Mat map(bgr.rows, bgr.cols, CV_32F, output.values.data());
        map(cv::Rect(overlap, overlap, tile.width, tile.height)).copyTo(probability(tile));
    });
    return probability;
}

std::vector<TextRegion> TextDetector::detect(const cv::Mat& picture, const std::stop_token& stop) const {
    const cv::Rect area = activeArea(picture);
    if (area.empty()) return {};
    const cv::Mat probability = textProbability(picture, area, stop);
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
        const cv::Point corner(static_cast<int>(std::floor(core.x - grow)),
                               static_cast<int>(std::floor(core.y - grow)));
        const cv::Point opposite(static_cast<int>(std::ceil(core.br().x + grow)),
                                 static_cast<int>(std::ceil(core.br().y + grow)));
        regions.push_back({(cv::Rect(corner, opposite) + area.tl()) & cv::Rect({}, picture.size()), score});
    }
    return joinOverlapping(std::move(regions));
}

}  // namespace ovrin
