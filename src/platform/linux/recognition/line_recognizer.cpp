#include "platform/linux/recognition/line_recognizer.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include <opencv2/imgproc.hpp>
#include <unicode/unistr.h>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr int networkHeight = 48;
constexpr int networkStep = 8;  // columns for one step of the output
constexpr int minimumWidth = 48;
constexpr int maximumWidth = 3200;

std::vector<char32_t> readCharacters(const std::filesystem::path& file) {
    std::ifstream input(file);
    if (!input) throw Error("The recognition model's character list " + file.string() + " is missing.");
    std::vector<char32_t> characters;
    for (std::string line; std::getline(input, line);) {
        characters.push_back(static_cast<char32_t>(icu::UnicodeString::fromUTF8(line).char32At(0)));
    }
    constexpr std::size_t fewest = 1000;
    if (characters.size() < fewest)
        throw Error("The recognition model's character list " + file.string() + " is damaged.");
    characters.push_back(U' ');
    return characters;
}

Tensor networkInput(const cv::Mat& bgr, int paddedWidth) {
    const auto plane = static_cast<std::size_t>(networkHeight) * static_cast<std::size_t>(paddedWidth);
    Tensor tensor{{1, 3, networkHeight, paddedWidth}, std::vector<float>(plane * 3)};
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        for (int x = 0; x < bgr.cols; ++x) {
            for (int channel = 0; channel < 3; ++channel) {
                tensor.values[static_cast<std::size_t>(channel) * plane +
                              static_cast<std::size_t>(y) * static_cast<std::size_t>(paddedWidth) +
                              static_cast<std::size_t>(x)] = static_cast<float>(row[x][channel]) / 127.5F - 1.0F;
            }
        }
    }
    return tensor;
}

}  // namespace

LineRecognizer::LineRecognizer(const std::filesystem::path& modelFile, const std::filesystem::path& characterFile)
    : network_(modelFile), characters_(readCharacters(characterFile)), known_(characters_.begin(), characters_.end()) {}

Reading LineRecognizer::read(const cv::Mat& line, const std::stop_token& stop) const {
    const double scale = static_cast<double>(networkHeight) / line.rows;
    const int width = std::clamp(static_cast<int>(std::lround(line.cols * scale)), 1, maximumWidth);
    cv::Mat scaled;
    cv::resize(line, scaled, {width, networkHeight}, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    const int paddedWidth = std::max(minimumWidth, (width + networkStep - 1) / networkStep * networkStep);
    const Tensor output = network_.run(networkInput(scaled, paddedWidth), stop);
    const auto steps = static_cast<std::size_t>(output.shape.at(1));
    const auto classes = static_cast<std::size_t>(output.shape.at(2));
    if (classes != characters_.size() + 1)
        throw Error("The recognition model and its character list don't belong together.");

    const double pixelsPerStep = static_cast<double>(paddedWidth) / static_cast<double>(steps) * line.cols / width;
    Reading reading;
    std::size_t previous = 0;
    double space = 0;
    for (std::size_t step = 0; step < steps; ++step) {
        const auto first = output.values.begin() + static_cast<std::ptrdiff_t>(step * classes);
        const auto best = std::max_element(first, first + static_cast<std::ptrdiff_t>(classes));
        const auto index = static_cast<std::size_t>(best - first);
        space = std::max(space, static_cast<double>(first[static_cast<std::ptrdiff_t>(classes - 1)]));
        if (index == previous && index != 0 && index != classes - 1) {
            auto& last = reading.back();
            last.confidence = std::max(last.confidence, *best);
            last.right = static_cast<double>(step + 1) * pixelsPerStep;
        } else if (index != 0 && index != classes - 1) {
            reading.push_back({characters_[index - 1], *best, static_cast<double>(step) * pixelsPerStep,
                               static_cast<double>(step + 1) * pixelsPerStep, space});
            space = 0;
        }
        previous = index;
    }
    return reading;
}

}  // namespace ovrin
