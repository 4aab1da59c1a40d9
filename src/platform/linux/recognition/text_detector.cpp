#include "platform/linux/recognition/text_detector.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

constexpr int strideOfNetwork = 32;  // its input sides are multiples of this
constexpr int tileWidth = 1504;      // columns that the network sees; bounds the memory of one run
constexpr int tileHeight = 512;
constexpr int overlap = 24;        // text that touches the border of a tile or crop is not seen otherwise
constexpr int leastContrast = 10;  // between neighbouring pixels, levels of 255
// Chosen on 29 screenshots of strangers. The network finds lines well when the cores that it marks are about this high
// (13 is as good and takes a third longer); the lower fifth of the lines decides, since small text is what it misses.
constexpr double wantedCore = 11;  // pixels that the network sees
constexpr double leastScale = 0.75;
constexpr double largestScale = 1.5;
constexpr double glanceScale = 0.5;
constexpr int largeArea = 200'000;       // pixels; in less, the glance costs more than it saves
constexpr double fullProbability = 255;  // in a byte a pixel: as floats, that of a 4K picture takes 75 MiB
constexpr double textThreshold = 0.3 * fullProbability;
constexpr double minimumScore = 0.5 * fullProbability;
constexpr double growth = 1.6;  // the network marks a shrunken core of each line

// As the network was trained: blue, green, red of the pictures that its family learned from.
const cv::Scalar mean(0.485 * 255, 0.456 * 255, 0.406 * 255);
const cv::Scalar deviation(0.229 * 255, 0.224 * 255, 0.225 * 255);

// The part of the picture outside of which neighbouring pixels hardly differ: there is no text there.
cv::Rect activeArea(const cv::Mat& picture) {
    constexpr int rowsAtOnce = 256;  // the differences of a whole 4K picture would take 33 MiB
    cv::Rect active;
    for (int y = 0; y < picture.rows && picture.cols > 1; y += rowsAtOnce) {
        const cv::Mat strip = picture.rowRange(y, std::min(y + rowsAtOnce, picture.rows));
        cv::Mat contrast;
        cv::absdiff(strip.colRange(1, strip.cols), strip.colRange(0, strip.cols - 1), contrast);
        const cv::Rect bytes = cv::boundingRect(contrast.reshape(1) >= leastContrast);
        if (bytes.empty()) continue;
        const int left = bytes.x / 4;
        active |= cv::Rect(left, y + bytes.y, (bytes.br().x - 1) / 4 + 2 - left, bytes.height);
    }
    return active;
}

// Where words stand closely the network's regions run into each other, or nearly: one piece is read better than two
// halves.
std::vector<cv::Rect> joinOverlapping(std::vector<cv::Rect> regions) {
    std::ranges::sort(regions, {}, &cv::Rect::x);
    std::vector<cv::Rect> joined;
    for (const auto& region : regions) {
        const auto found = std::ranges::find_if(joined, [&](const cv::Rect& other) {
            const int aside = region.height / 5;
            const cv::Rect wide(region.x - aside, region.y, region.width + 2 * aside, region.height);
            return (other & wide).height > 0.6 * std::max(region.height, other.height);
        });
        if (found == joined.end())
            joined.push_back(region);
        else
            *found |= region;
    }
    return joined;
}

cv::Rect scaled(const cv::Rect2d& rect, double factor) {
    return {cv::Point(static_cast<int>(std::floor(rect.x * factor)), static_cast<int>(std::floor(rect.y * factor))),
            cv::Point(static_cast<int>(std::ceil(rect.br().x * factor)),
                      static_cast<int>(std::ceil(rect.br().y * factor)))};
}

// How likely each pixel of the area, at that scale, is in the core of a line.
cv::Mat textProbability(const InferenceSession& network, const cv::Mat& picture, const cv::Rect& area, double scale,
                        const std::stop_token& stop) {
    const cv::Size size(std::max(1, static_cast<int>(std::lround(area.width * scale))),
                        std::max(1, static_cast<int>(std::lround(area.height * scale))));
    const int columns = cv::divUp(size.width, tileWidth);
    const int rows = cv::divUp(size.height, tileHeight);
    cv::Mat probability(size, CV_8U, cv::Scalar(0));
    for (int index = 0; index < rows * columns; ++index) {
        const int row = index / columns;
        const int column = index % columns;
        const cv::Rect tile(cv::Point(size.width * column / columns, size.height * row / rows),
                            cv::Point(size.width * (column + 1) / columns, size.height * (row + 1) / rows));
        // Around the tile, what the network needs to see of its surroundings; at the picture's edge, more of the edge.
        const cv::Rect wanted(tile.x - overlap, tile.y - overlap,
                              cv::divUp(tile.width + 2 * overlap, strideOfNetwork) * strideOfNetwork,
                              cv::divUp(tile.height + 2 * overlap, strideOfNetwork) * strideOfNetwork);
        const cv::Rect source = (scaled(wanted, 1 / scale) + area.tl()) & cv::Rect({}, picture.size());
        if (activeArea(picture(source)).empty()) continue;
        cv::Mat bgr;
        cv::cvtColor(picture(source), bgr, cv::COLOR_BGRA2BGR);
        // From the network's pixels back to those of the cut-out part, centre on centre.
        const double offset = 0.5 / scale - 0.5;
        const cv::Matx23d back(1 / scale, 0, wanted.x / scale + area.x - source.x + offset,  //
                               0, 1 / scale, wanted.y / scale + area.y - source.y + offset);
        cv::warpAffine(bgr, bgr, back, wanted.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
        network.run(bgr, mean, deviation, stop, [&](const cv::Mat& map) {
            cv::Mat target = probability(tile);
            map(cv::Rect(overlap, overlap, tile.width, tile.height)).convertTo(target, CV_8U, fullProbability);
        });
    }
    return probability;
}

// A look at the picture made smaller tells how high its lines are.
double scaleFor(const InferenceSession& network, const cv::Mat& picture, const cv::Rect& area,
                const std::stop_token& stop) {
    if (area.area() < largeArea) return largestScale;
    const cv::Mat mask = textProbability(network, picture, area, glanceScale, stop) > textThreshold;
    cv::Mat labels, boxes, centers;
    const int count = cv::connectedComponentsWithStats(mask, labels, boxes, centers, 8, CV_32S);
    std::vector<double> heights;
    for (int i = 1; i < count; ++i) heights.push_back(boxes.at<int>(i, cv::CC_STAT_HEIGHT) / glanceScale);
    if (heights.empty()) return largestScale;
    const auto fifth = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() / 5);
    std::nth_element(heights.begin(), fifth, heights.end());
    return std::clamp(wantedCore / *fifth, leastScale, largestScale);
}

std::vector<cv::Rect> detectAt(const InferenceSession& network, const cv::Mat& picture, const cv::Rect& area,
                               double scale, const std::stop_token& stop) {
    const cv::Mat probability = textProbability(network, picture, area, scale, stop);
    const cv::Mat mask = probability > textThreshold;
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    std::multimap<double, cv::Rect, std::greater<>> found;  // by the network's sureness
    for (const auto& contour : contours) {
        const cv::Rect core = cv::boundingRect(contour);
        const double score = cv::mean(probability(core), mask(core))[0];
        const double grow = core.area() * growth / (2.0 * (core.width + core.height));
        const cv::Rect2d whole(core.x - grow, core.y - grow, core.width + 2 * grow, core.height + 2 * grow);
        if (score >= minimumScore)
            found.emplace(score, (scaled(whole, 1 / scale) + area.tl()) & cv::Rect({}, picture.size()));
    }
    std::vector<cv::Rect> regions;
    for (const auto& [score, region] : found)
        if (regions.size() < TextDetector::mostRegions) regions.push_back(region);
    return regions;
}

}  // namespace

// Two threads in one run take half of the memory of two runs at once.
TextDetector::TextDetector(const std::filesystem::path& modelFile) : network_(modelFile, cv::getNumThreads()) {}

std::vector<cv::Rect> TextDetector::detect(const cv::Mat& picture, const std::stop_token& stop) const {
    const cv::Rect area = activeArea(picture);
    if (area.empty()) return {};
    auto regions = detectAt(network_, picture, area, scaleFor(network_, picture, area, stop), stop);
    // What is large and alone in a small picture may be seen only from further off.
    if (regions.empty() && area.area() < largeArea) regions = detectAt(network_, picture, area, leastScale, stop);
    return joinOverlapping(std::move(regions));
}

}  // namespace ovrin
