// The text of a label over the translated picture, wrapped into its box: smaller when it does not fit otherwise, and
// cut with an ellipsis when that is not enough.
#pragma once

#include <QFont>
#include <QSizeF>
#include <QString>
#include <memory>

class QPainter;
class QPointF;
class QTextLayout;

namespace ovrin {

class LabelText {
public:
    // fontSize and room in points; the font's own size does not count.
    LabelText(const QString& text, const QFont& font, double fontSize, const QSizeF& room);
    LabelText(const LabelText&) = delete;
    LabelText& operator=(const LabelText&) = delete;
    ~LabelText();

    double height() const { return height_; }
    int lineCount() const;
    // What is shown: the text, or the beginning of it and an ellipsis.
    QString text() const;

    void draw(QPainter& painter, const QPointF& origin) const;

private:
    bool wrap(const QString& text, double size, int mostLines);
    bool fits(double size, double room) const;
    QString cut(const QString& text) const;

    QFont font_;
    double width_;
    std::unique_ptr<QTextLayout> layout_;
    double height_ = 0;
};

}  // namespace ovrin
