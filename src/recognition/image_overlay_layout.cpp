#include "recognition/image_overlay_layout.h"

#include <algorithm>
#include <cstddef>

namespace ovrin::overlay {

namespace {

constexpr double fontSizePerHeight = 0.62;
constexpr double smallestFontSize = 9;
constexpr double largestFontSize = 16;

}  // namespace

LocalRect imageRectangle(Size view, Size image) {
    if (image.width <= 0 || image.height <= 0) return {0, 0, view.width, view.height};
    const double scale = std::min(view.width / image.width, view.height / image.height);
    const double width = image.width * scale;
    const double height = image.height * scale;
    return {(view.width - width) * 0.5, (view.height - height) * 0.5, width, height};
}

double labelFontSize(double labelHeight) {
    return std::clamp(labelHeight * fontSizePerHeight, smallestFontSize, largestFontSize);
}

std::vector<std::string> translatedLines(std::string_view translatedText) {
    std::vector<std::string> lines;
    std::string_view rest = translatedText;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (!line.empty()) lines.emplace_back(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    if (lines.empty()) lines.emplace_back(translatedText);
    return lines;
}

std::vector<Label> labels(const LocalRect& imageRectangle, const std::vector<OCRParagraph>& paragraphs,
                          std::string_view translatedText) {
    const std::vector<std::string> lines = translatedLines(translatedText);
    std::vector<Label> result;
    for (const OCRParagraph& paragraph : paragraphs) {
        const std::size_t index = result.size();
        const LocalRect frame = toLocalSpace(paragraph.normalizedBoundingBox, imageRectangle);
        result.push_back({.text = index < lines.size() ? lines[index] : paragraph.text,
                          .frame = frame,
                          .fontSize = labelFontSize(frame.height)});
    }
    return result;
}

}  // namespace ovrin::overlay
