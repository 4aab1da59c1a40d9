// The layout of the translation over the captured picture: where the picture lies in its view, and the dark label that
// covers each recognised paragraph with its translated line. Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/geometry.h"
#include "recognition/ocr_paragraph.h"

namespace ovrin::overlay {

// How the labels look.
inline constexpr double labelPadding = 4;  // left and right of the text
inline constexpr double labelCornerRadius = 3;
inline constexpr double labelBackgroundOpacity = 0.78;  // of black
inline constexpr int labelMaximumLines = 3;
inline constexpr double labelMinimumScale = 0.6;  // of the font size, when the text does not fit otherwise

struct Label {
    std::string text;
    LocalRect frame;
    double fontSize = 0;  // before it shrinks to fit

    bool operator==(const Label&) const = default;
};

// The picture as large as it fits, centred; the whole view for a picture of no size.
LocalRect imageRectangle(Size view, Size image);

// For a label of that height.
double labelFontSize(double labelHeight);

// The lines of the translation without the empty ones; the translation itself when there are no others.
std::vector<std::string> translatedLines(std::string_view translatedText);

// One label a paragraph, in their order: the line of the same number, or for want of one the recognised text.
std::vector<Label> labels(const LocalRect& imageRectangle, const std::vector<OCRParagraph>& paragraphs,
                          std::string_view translatedText);

}  // namespace ovrin::overlay
