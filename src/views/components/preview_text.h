// The beginning of a text of any length, on one or two lines: wrapped to a width, the last line cut with an ellipsis.
// Blank lines and blanks around line breaks are left out. A text of a megabyte costs as much as a short one.
//
// Main thread.
#pragma once

#include <QFont>
#include <QString>
#include <string_view>

class QColor;
class QPainter;
class QRectF;

namespace ovrin {

class PreviewText {
public:
    static constexpr int maximumLines = 2;
    static constexpr int lineHeight = 20;  // points

    // text: UTF-8
    PreviewText(std::string_view text, const QFont& font);

    // The width in points that it needs to stand on one line; infinite where it is broken into lines, or too long for
    // the line to be worth measuring.
    static double widthOfOneLine(std::string_view text, const QFont& font);

    // Draws as many lines as have room, from the top of the area.
    void draw(QPainter& painter, const QRectF& area, const QColor& color) const;

private:
    QString text_;  // with line separators where lines are broken
    QFont font_;
};

}  // namespace ovrin
