#include "platform/linux/recognition/line_recognizer.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include <opencv2/imgproc.hpp>
#include <unicode/unistr.h>

#include "base/error.h"
#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

constexpr int networkHeight = 48;
constexpr int networkStep = 8;  // columns for one step of the output
constexpr int minimumWidth = 32;
constexpr double wordGap = 0.15;  // of the line's height, margins included

// The model lists its characters one a line; the blank precedes them, the space follows.
std::vector<char32_t> charactersOf(const InferenceSession& network) {
    std::vector<char32_t> characters = {0};
    std::istringstream list(network.metadata("character"));
    for (std::string line; std::getline(list, line);)
        characters.push_back(static_cast<char32_t>(icu::UnicodeString::fromUTF8(line).char32At(0)));
    if (characters.size() == 1)
        throw Error("文字识别模型文件 " + network.file().string() + " 已损坏：其中没有字符表。");
    characters.push_back(U' ');
    return characters;
}

// The class of the largest score. Scores are probabilities: one above a half is the largest, and mostly that of the
// blank or of the step before, which spares the search among all.
int largest(const cv::Mat1f& scores, int previous) {
    for (const int likely : {0, previous})
        if (scores(likely) > 0.5F) return likely;
    int best[2] = {};
    cv::minMaxIdx(scores, nullptr, nullptr, nullptr, best);
    return best[1];
}

}  // namespace

// Lines are read in parallel, each by one thread: the threads of one run would wait for each other at every layer.
LineRecognizer::LineRecognizer(const std::filesystem::path& modelFile)
    : network_(modelFile, 1), characters_(charactersOf(network_)) {}

Reading LineRecognizer::read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop,
                             int longest) const {
    const int height = piece.color.rows;
    if (columns.width() * networkHeight <= longest * height) return readPart(piece, columns, stop);
    ColumnRun widest{columns.left + columns.width() / 2, columns.left + columns.width() / 2};
    for (std::size_t i = 1; i < piece.runs.size(); ++i) {
        const ColumnRun gap{piece.runs[i - 1].right, piece.runs[i].left};
        const bool isInMiddle = std::abs(gap.center() - columns.center()) < columns.width() / 4.0;
        if (isInMiddle && gap.width() >= widest.width()) widest = gap;
    }
    const int cut = widest.left + widest.width() / 2;
    Reading parts[2];
    parallelFor(2, [&](std::size_t part) {
        parts[part] =
            read(piece, part == 0 ? ColumnRun{columns.left, cut} : ColumnRun{cut, columns.right}, stop, longest);
    });
    if (!parts[1].empty() && widest.width() > wordGap * height) parts[1].front().spaceBefore = 1;
    parts[0].insert(parts[0].end(), parts[1].begin(), parts[1].end());
    return parts[0];
}

Reading LineRecognizer::readPart(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) const {
    const cv::Mat line = piece.color.colRange(columns.left, columns.right);
    const double scale = static_cast<double>(networkHeight) / line.rows;
    const int width = std::max(1, static_cast<int>(std::lround(line.cols * scale)));
    const int paddedWidth = std::max(minimumWidth, (width + networkStep - 1) / networkStep * networkStep);
    cv::Mat scaled;
    // The sharpest of OpenCV's: of 798 lines of screenshots the network reads 8 more than of cubic interpolation's.
    cv::resize(line, scaled, {width, networkHeight}, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_LANCZOS4);
    cv::copyMakeBorder(scaled, scaled, 0, 0, 0, paddedWidth - width, cv::BORDER_REPLICATE);

    Reading reading;
    network_.run(scaled, cv::Scalar::all(127.5), cv::Scalar::all(127.5), stop, [&](const cv::Mat& output) {
        const int space = output.cols - 1;
        if (characters_.size() != static_cast<std::size_t>(output.cols))
            throw Error("文字识别模型文件 " + network_.file().string() + " 已损坏：字符表与网络不符。");
        const double pixelsPerStep = static_cast<double>(paddedWidth) / output.rows * line.cols / width;
        int previous = 0;
        float spaceBefore = 0;
        for (int step = 0; step < output.rows; ++step) {
            const cv::Mat1f scores = output.row(step);
            const int index = largest(scores, previous);
            spaceBefore = std::max(spaceBefore, scores(space));
            const bool isCharacter = index != 0 && index != space;
            if (isCharacter && index != previous) {
                reading.push_back({.code = characters_[static_cast<std::size_t>(index)],
                                   .left = columns.left + step * pixelsPerStep,
                                   .spaceBefore = spaceBefore});
                spaceBefore = 0;
            }
            previous = index;
            if (!isCharacter) continue;
            ReadCharacter& character = reading.back();
            character.right = columns.left + (step + 1) * pixelsPerStep;
            character.confidence = std::max(character.confidence, scores(index));
        }
    });
    return reading;
}

}  // namespace ovrin
