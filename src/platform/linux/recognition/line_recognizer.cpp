#include "platform/linux/recognition/line_recognizer.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <opencv2/imgproc.hpp>
#include <unicode/unistr.h>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr int networkHeight = 48;
constexpr int networkStep = 8;  // columns for one step of the output
constexpr int minimumWidth = 32;
constexpr int longestPart = 1000;  // columns; the output takes 3 MiB for every 320 of them

// The model lists its characters one a line; the blank precedes them, the space follows.
std::vector<char32_t> charactersOf(const InferenceSession& network) {
    std::vector<char32_t> characters = {0};
    const std::string list = network.metadata("character");
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find('\n', begin), list.size());
        const auto line = icu::UnicodeString::fromUTF8(list.substr(begin, end - begin));
        characters.push_back(static_cast<char32_t>(line.char32At(0)));
        begin = end + 1;
    }
    if (characters.size() == 1)
        throw Error("文字识别模型文件 " + network.file().string() + " 已损坏：其中没有字符表。");
    characters.push_back(U' ');
    return characters;
}

Tensor networkInput(const cv::Mat& bgr, int paddedWidth) {
    const auto plane = static_cast<std::size_t>(networkHeight) * static_cast<std::size_t>(paddedWidth);
    Tensor tensor{{1, 3, networkHeight, paddedWidth}, std::vector<float>(plane * 3)};
    for (int y = 0; y < bgr.rows; ++y) {
        const auto* row = bgr.ptr<cv::Vec3b>(y);
        float* target =
            tensor.values.data() + static_cast<std::ptrdiff_t>(y) * static_cast<std::ptrdiff_t>(paddedWidth);
        for (int x = 0; x < paddedWidth; ++x, ++target) {
            const cv::Vec3b& pixel = row[std::min(x, bgr.cols - 1)];
            for (int channel = 0; channel < 3; ++channel) {
                target[static_cast<std::size_t>(channel) * plane] = static_cast<float>(pixel[channel]) / 127.5F - 1.0F;
            }
        }
    }
    return tensor;
}

// Where to cut a line in two: in the middle of the widest run of columns of one colour within the middle half.
int cutColumn(const cv::Mat& line) {
    int best = line.cols / 2;
    int widest = 0;
    int run = 0;
    for (int x = line.cols / 4; x < line.cols * 3 / 4; ++x) {
        double least = 0, most = 0;
        cv::minMaxLoc(line.col(x).clone().reshape(1), &least, &most);
        constexpr double plain =
            40;  // levels of 255 between the darkest and the lightest, compression's noise included
        run = most - least < plain ? run + 1 : 0;
        if (run > widest) {
            widest = run;
            best = x - run / 2;
        }
    }
    return best;
}

}  // namespace

LineRecognizer::LineRecognizer(const std::filesystem::path& modelFile)
    : network_(modelFile), characters_(charactersOf(network_)) {}

Reading LineRecognizer::read(const cv::Mat& line, const std::stop_token& stop) const {
    if (static_cast<double>(line.cols) * networkHeight / line.rows <= longestPart) return readPart(line, stop);
    const int cut = cutColumn(line);
    Reading reading = read(line.colRange(0, cut), stop);
    for (auto& character : read(line.colRange(cut, line.cols), stop)) {
        character.left += cut;
        character.right += cut;
        reading.push_back(character);
    }
    return reading;
}

Reading LineRecognizer::readPart(const cv::Mat& line, const std::stop_token& stop) const {
    const double scale = static_cast<double>(networkHeight) / line.rows;
    const int width = std::max(1, static_cast<int>(std::lround(line.cols * scale)));
    cv::Mat scaled;
    cv::resize(line, scaled, {width, networkHeight}, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    const int paddedWidth = std::max(minimumWidth, (width + networkStep - 1) / networkStep * networkStep);

    Reading reading;
    network_.run(networkInput(scaled, paddedWidth), stop, [&](auto shape, auto values) {
        if (shape.size() != 3 || static_cast<std::size_t>(shape[2]) != characters_.size())
            throw Error("文字识别模型文件 " + network_.file().string() + " 已损坏：字符表与网络不符。");
        const auto steps = static_cast<std::size_t>(shape[1]);
        const auto classes = static_cast<std::size_t>(shape[2]);
        const double pixelsPerStep = static_cast<double>(paddedWidth) / static_cast<double>(steps) * line.cols / width;
        std::size_t previous = 0;
        double space = 0;
        for (std::size_t step = 0; step < steps; ++step) {
            const auto scores = values.subspan(step * classes, classes);
            const auto best = std::ranges::max_element(scores);
            const auto index = static_cast<std::size_t>(best - scores.begin());
            space = std::max(space, static_cast<double>(scores.back()));
            const bool isCharacter = index != 0 && index != classes - 1;
            const bool repeats = isCharacter && index == previous;
            previous = index;
            if (!isCharacter) continue;
            if (!repeats) {
                reading.push_back({.code = characters_[index], .left = static_cast<double>(step) * pixelsPerStep});
                reading.back().spaceBefore = space;
                space = 0;
            }
            ReadCharacter& character = reading.back();
            character.right = static_cast<double>(step + 1) * pixelsPerStep;
            if (*best <= character.confidence) continue;
            character.confidence = *best;
            // The runner-up; a blank or a space beside a character is no other character.
            const auto inner = scores.subspan(1, classes - 2);
            const auto at = static_cast<std::size_t>(index - 1);
            auto second = std::max_element(inner.begin(), inner.begin() + static_cast<std::ptrdiff_t>(at));
            const auto after = std::max_element(inner.begin() + static_cast<std::ptrdiff_t>(at) + 1, inner.end());
            if (after != inner.end() && (at == 0 || *after > *second)) second = after;
            character.second = characters_[static_cast<std::size_t>(second - inner.begin()) + 1];
            character.secondConfidence = *second;
        }
    });
    return reading;
}

}  // namespace ovrin
