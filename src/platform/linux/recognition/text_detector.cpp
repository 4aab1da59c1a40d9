#include "platform/linux/recognition/text_detector.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

constexpr int strideOfNetwork = 32;  // its input sides are multiples of this
constexpr int tileWidth = 1088;      // columns that the network sees; bounds the memory of one run
constexpr int tileHeight = 512;
constexpr int leastTileHeight = 96;  // below, splitting for another core costs more than it gains
constexpr int overlap = 24;          // text that touches the border of a tile or crop is not seen otherwise
constexpr int leastContrast = 10;    // between neighbouring pixels, levels of 255
// Chosen on 29 screenshots of strangers. The network finds lines best when the cores that it marks are about this high;
// the lower fifth of the lines decides, since small text is what it misses.
constexpr double wantedCore = 13;  // pixels that the network sees
constexpr double leastScale = 0.75;
constexpr double largestScale = 1.5;
constexpr double glanceScale = 0.5;
constexpr int largeArea = 200'000;       // pixels; in less, the glance costs more than it saves
constexpr double fullProbability = 255;  // in a byte a pixel: as floats, that of a 4K picture takes 75 MiB
constexpr double textThreshold = 0.3 * fullProbability;
constexpr float minimumScore = 0.5F;
constexpr double growth = 1.6;  // the network marks a shrunken core of each line
// Lines that run aslant by less than both of these are read as they are: the ends of the line stand off by this share
// of its height, and its angle in degrees.
constexpr double slantedDrift = 0.5;
constexpr double slantedDegrees = 2;

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
    std::ranges::sort(regions, {}, [](const TextRegion& region) { return region.box.x; });
    std::vector<TextRegion> joined;
    for (auto& region : regions) {
        const auto overlaps = [&](const TextRegion& other) {
            const int sharedHeight =
                std::min(region.box.br().y, other.box.br().y) - std::max(region.box.y, other.box.y);
            return other.box.br().x > region.box.x && region.slant.size.empty() && other.slant.size.empty() &&
                   sharedHeight > 0.6 * std::max(region.box.height, other.box.height);
        };
        const auto found = std::ranges::find_if(joined, overlaps);
        if (found == joined.end()) {
            joined.push_back(region);
        } else {
            found->box |= region.box;
            found->score = std::max(found->score, region.score);
        }
    }
    return joined;
}

// The region around one outline of the map, whose pixels are `scale` times those of the picture.
TextRegion regionOf(const std::vector<cv::Point>& contour, double scale) {
    const cv::Rect core = cv::boundingRect(contour);
    TextRegion region;
    cv::RotatedRect slant = cv::minAreaRect(contour);
    if (slant.size.width < slant.size.height) {
        std::swap(slant.size.width, slant.size.height);
        slant.angle -= 90;
    }
    while (slant.angle > 90) slant.angle -= 180;
    while (slant.angle < -90) slant.angle += 180;
    const double tilt = std::min(std::abs(slant.angle), 90 - std::abs(slant.angle));
    // How far the ends of the line stand off the horizontal or vertical, in its own heights.
    const double drift = std::sin(tilt * CV_PI / 180) * slant.size.width / std::max(1.0F, slant.size.height);
    if (drift > slantedDrift && tilt > slantedDegrees) {
        const auto grow = static_cast<float>(slant.size.area() * growth / (slant.size.width + slant.size.height));
        slant.size += cv::Size2f(grow, grow);
        slant.center /= scale;
        slant.size = slant.size / static_cast<float>(scale);
        region.slant = slant;
    }
    const double grow = core.area() * growth / (2.0 * (core.width + core.height));
    region.box = cv::Rect(cv::Point(static_cast<int>(std::floor((core.x - grow) / scale)),
                                    static_cast<int>(std::floor((core.y - grow) / scale))),
                          cv::Point(static_cast<int>(std::ceil((core.br().x + grow) / scale)),
                                    static_cast<int>(std::ceil((core.br().y + grow) / scale))));
    return region;
}

}  // namespace

TextDetector::TextDetector(const std::filesystem::path& modelFile) : network_(modelFile) {}

cv::Mat TextDetector::textProbability(const cv::Mat& picture, const cv::Rect& area, double scale,
                                      const std::stop_token& stop) const {
    const cv::Size size(std::max(1, static_cast<int>(std::lround(area.width * scale))),
                        std::max(1, static_cast<int>(std::lround(area.height * scale))));
    const int columns = (size.width + tileWidth - 1) / tileWidth;
    const int wantedRows = columns > 1 ? 1 : static_cast<int>(recognitionThreads());
    const int rows =
        std::max((size.height + tileHeight - 1) / tileHeight, std::clamp(size.height / leastTileHeight, 1, wantedRows));
    cv::Mat probability(size, CV_8U, cv::Scalar(0));
    const auto count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
    parallelFor(count, recognitionThreads(), [&](std::size_t index) {
        const int row = static_cast<int>(index) / columns;
        const int column = static_cast<int>(index) % columns;
        const cv::Rect tile(cv::Point(size.width * column / columns, size.height * row / rows),
                            cv::Point(size.width * (column + 1) / columns, size.height * (row + 1) / rows));
        // Around the tile, what the network needs to see of its surroundings; at the picture's edge, more of the edge.
        const cv::Rect wanted(tile.x - overlap, tile.y - overlap, roundedUp(tile.width + 2 * overlap, strideOfNetwork),
                              roundedUp(tile.height + 2 * overlap, strideOfNetwork));
        const cv::Rect source = cv::Rect(cv::Point(static_cast<int>(std::floor(wanted.x / scale)) + area.x,
                                                   static_cast<int>(std::floor(wanted.y / scale)) + area.y),
                                         cv::Point(static_cast<int>(std::ceil(wanted.br().x / scale)) + area.x,
                                                   static_cast<int>(std::ceil(wanted.br().y / scale)) + area.y)) &
                                cv::Rect({}, picture.size());
        if (activeArea(picture(source)).empty()) return;
        cv::Mat bgr;
        cv::cvtColor(picture(source), bgr, cv::COLOR_BGRA2BGR);
        // From the network's pixels back to those of the cut-out part, centre on centre.
        const double offset = 0.5 / scale - 0.5;
        const cv::Matx23d back(1 / scale, 0, wanted.x / scale + area.x - source.x + offset,  //
                               0, 1 / scale, wanted.y / scale + area.y - source.y + offset);
        cv::Mat scaled;
        cv::warpAffine(bgr, scaled, back, wanted.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
        network_.run(networkInput(scaled), stop, [&](auto /*shape*/, std::span<const float> values) {
            const cv::Mat map(scaled.rows, scaled.cols, CV_32F, const_cast<float*>(values.data()));
            cv::Mat target = probability(tile);
            map(cv::Rect(overlap, overlap, tile.width, tile.height)).convertTo(target, CV_8U, fullProbability);
        });
    });
    return probability;
}

// A look at the picture made smaller tells how high its lines are.
double TextDetector::scaleFor(const cv::Mat& picture, const cv::Rect& area, const std::stop_token& stop) const {
    if (area.area() < largeArea) return largestScale;
    const cv::Mat mask = textProbability(picture, area, glanceScale, stop) > textThreshold;
    cv::Mat labels, boxes, centers;
    const int count = cv::connectedComponentsWithStats(mask, labels, boxes, centers, 8, CV_32S);
    std::vector<double> heights;
    for (int i = 1; i < count; ++i) heights.push_back(boxes.at<int>(i, cv::CC_STAT_HEIGHT) / glanceScale);
    if (heights.empty()) return largestScale;
    const auto small = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() / 5);
    std::ranges::nth_element(heights, small);
    return std::clamp(wantedCore / *small, leastScale, largestScale);
}

std::vector<TextRegion> TextDetector::detect(const cv::Mat& picture, const std::stop_token& stop) const {
    const cv::Rect area = activeArea(picture);
    if (area.empty()) return {};
    const double scale = scaleFor(picture, area, stop);
    const cv::Mat probability = textProbability(picture, area, scale, stop);
    const cv::Mat mask = probability > textThreshold;
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);

    std::vector<TextRegion> regions;
    for (const auto& contour : contours) {
        const cv::Rect core = cv::boundingRect(contour);
        if (std::min(core.width, core.height) < 2) continue;
        const auto score = static_cast<float>(cv::mean(probability(core), mask(core))[0] / fullProbability);
        if (score < minimumScore) continue;
        TextRegion region = regionOf(contour, scale);
        region.score = score;
        region.box = (region.box + area.tl()) & cv::Rect({}, picture.size());
        region.slant.center += cv::Point2f(area.tl());
        if (!region.box.empty()) regions.push_back(region);
    }
    if (regions.size() > mostRegions) {
        std::ranges::nth_element(regions, regions.begin() + mostRegions, std::greater(), &TextRegion::score);
        regions.resize(mostRegions);
    }
    return joinOverlapping(std::move(regions));
}

}  // namespace ovrin
