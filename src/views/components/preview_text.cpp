#include "views/components/preview_text.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "views/components/drawing.h"
#include "views/components/wrapped_text.h"

namespace ovrin {

namespace {

constexpr std::size_t longestBeginning = 3000;  // bytes, more than two lines of a wide screen hold
constexpr std::size_t longestLine = 240;        // bytes of a text that may fit on one line and is measured for it
constexpr double narrowestCharacter = 0.22;     // of the font's size: a letter i in most faces
constexpr QChar lineBreak = QChar::LineSeparator;

std::string_view cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) --bytes;
    return text.substr(0, bytes);
}

bool breaksLine(QChar character) {
    return character == '\n' || character == '\r' || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator || character == QChar(0x85);
}

// Blanks with a line break among them become that break, other control characters blanks.
QString withoutBlankLines(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (const QChar character : text) {
        const bool isAfterBreak = result.endsWith(lineBreak);
        if (breaksLine(character)) {
            while (!result.isEmpty() && result.back().isSpace() && result.back() != lineBreak) result.chop(1);
            if (!result.isEmpty() && !result.endsWith(lineBreak)) result += lineBreak;
        } else if (character.category() == QChar::Other_Control) {
            if (!isAfterBreak) result += u' ';
        } else if (!isAfterBreak || !character.isSpace()) {
            result += character;
        }
    }
    return result;
}

QString beginningOf(std::string_view text, std::size_t bytes) {
    const std::string_view whole = text::trimmed(text);
    const std::string_view part = cut(whole, bytes);
    QString shown = withoutBlankLines(toQString(part));
    if (part.size() < whole.size()) shown += u'…';
    return shown;
}

// What stands on the last line, from the start on, with an ellipsis where that is not the end of the text.
QString lastLine(const QString& text, qsizetype start, const QFont& font, double width) {
    const qsizetype end = text.indexOf(lineBreak, start);
    QString line = text.mid(start, end < 0 ? -1 : end - start);
    if (end >= 0) line += u'…';
    return QFontMetricsF(font).elidedText(line, Qt::ElideRight, width);
}

// Lays out at most so many lines of the width. Each is placed on the grid.
void layOut(QTextLayout& layout, Qt::LayoutDirection direction, double width, int lines) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(direction);
    option.setAlignment(direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    layout.setTextOption(option);
    const double baseline = WrappedText::Metrics{layout.font(), PreviewText::lineHeight}.baseline();
    layout.beginLayout();
    for (int number = 0; number < lines; ++number) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width);
        line.setPosition({0, number * PreviewText::lineHeight + baseline - line.ascent()});
    }
    layout.endLayout();
}

}  // namespace

PreviewText::PreviewText(std::string_view text, const QFont& font)
    : text_(beginningOf(text, longestBeginning)), font_(font) {}

double PreviewText::widthOfOneLine(std::string_view text, const QFont& font) {
    constexpr double never = std::numeric_limits<double>::infinity();
    if (text.size() > 4 * longestLine) return never;
    const std::string_view whole = text::trimmed(text);
    if (whole.size() > longestLine) return never;
    const QString line = beginningOf(whole, longestLine);
    return line.contains(lineBreak) ? never : std::ceil(QFontMetricsF(font).horizontalAdvance(line));
}

void PreviewText::draw(QPainter& painter, const QRectF& area, const QColor& color) const {
    const int lines = std::min(maximumLines, static_cast<int>(area.height()) / lineHeight);
    const auto considered = static_cast<qsizetype>(lines * area.width() / (narrowestCharacter * font_.pixelSize()));
    const QString text = beginning(text_, std::max<qsizetype>(considered, 1));
    const Qt::LayoutDirection direction = text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    painter.setPen(color);
    QTextLayout layout(text, font_);
    layOut(layout, direction, area.width(), lines);
    for (int number = 0; number < layout.lineCount(); ++number) {
        const QTextLine line = layout.lineAt(number);
        if (number + 1 < lines || line.textStart() + line.textLength() >= text.size()) {
            line.draw(&painter, area.topLeft());
            continue;
        }
        QTextLayout last(lastLine(text, line.textStart(), font_, area.width()), font_);
        layOut(last, direction, area.width(), 1);
        last.lineAt(0).draw(&painter, area.topLeft() + QPointF(0, number * lineHeight));
    }
}

}  // namespace ovrin
