// In which faces, sizes and colours the lines of a streamed text are set.
#pragma once

#include <QColor>
#include <QList>
#include <QTextLayout>
#include <optional>
#include <string>

#include "theme/type_scale.h"
#include "views/components/markdown_reader.h"
#include "views/components/wrapped_text.h"

namespace ovrin {

// Words of the interface look like its labels; without it a text looks as what is to be read does.
struct InterfaceStyle {
    theme::FontStyle font;
    double lineHeight = 0;  // points
};

struct DocumentLook {
    std::string language = "zh-Hans";  // BCP-47 tag; decides on the shapes of Chinese characters
    QColor text;
    QColor quietText;  // quotes, list markers
    QColor link;
    QColor codeBackground;
    QColor inlineCodeBackground;
    QColor line;  // rules, the edge of code, the bar beside a quote
    QColor selection;
    std::optional<InterfaceStyle> interfaceStyle{};
};

WrappedText::Metrics lineMetrics(const MarkdownLine& line, const DocumentLook& look);

// The stretches of the line that are set alike, in the positions of its text and without a gap.
QList<QTextLayout::FormatRange> lineFormats(const MarkdownLine& line, const DocumentLook& look);

}  // namespace ovrin
