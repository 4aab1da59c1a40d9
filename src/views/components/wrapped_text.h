// One paragraph wrapped to a width, on an even grid of lines, for texts that grow at their end.
//
// Long paragraphs are laid out in pieces of some dozen lines; a change lays out again only the pieces from the first
// that differs. Wrapping follows Unicode's line breaking rules, so that no line begins with closing punctuation;
// Chinese quotation marks may open and end a line; what has no place to break breaks anywhere. Main thread.
#pragma once

#include <QList>
#include <QRectF>
#include <QString>
#include <QTextLayout>
#include <memory>
#include <vector>

class QPainter;

namespace ovrin {

class WrappedText {
public:
    struct Metrics {
        QFont font;
        double lineHeight = 0;    // the grid; a line with taller glyphs takes more
        bool followsText = true;  // runs from the right and is flush right when its first letter does; else never

        double baseline() const;  // of an ordinary line, below its top, on a whole point
        friend bool operator==(const Metrics&, const Metrics&) = default;
    };

    WrappedText() = default;
    WrappedText(const WrappedText&) = delete;
    WrappedText& operator=(const WrappedText&) = delete;
    WrappedText(WrappedText&&) noexcept = default;  // said here, as the toolkit's fonts don't promise it
    WrappedText& operator=(WrappedText&&) noexcept = default;
    ~WrappedText() = default;

    // Takes on a text and its formats (in its own positions) and lays out what differs from the text before.
    void set(const QString& text, const QList<QTextLayout::FormatRange>& formats, const Metrics& metrics, double width);
    // Lays out everything anew.
    void setWidth(double width);

    const QString& text() const { return text_; }
    double height() const { return height_; }
    bool isRightToLeft() const { return isRightToLeft_; }
    // That of its widest line as it is wrapped now.
    double usedWidth() const;

    // All geometry is relative to the paragraph's upper-left corner. clip limits what is drawn.
    void draw(QPainter& painter, const QPointF& origin, const QRectF& clip) const;

    // The areas behind the characters of a stretch, one or more for each of its lines, as high as the line.
    std::vector<QRectF> areas(qsizetype start, qsizetype end, const QRectF& clip) const;

    // The position between characters that is nearest to the point.
    qsizetype positionAt(const QPointF& point) const;
    // Whether a character lies under the point, and which; -1 for none.
    qsizetype characterAt(const QPointF& point) const;

    // Where the line that holds the position begins and ends.
    struct Line {
        qsizetype start = 0;
        qsizetype end = 0;
        QRectF area;  // of the whole width
    };
    Line lineAt(qsizetype position) const;
    double xAt(qsizetype position) const;

private:
    // A part of the paragraph with a layout of its own; it begins with a line and ends with one.
    struct Piece {
        qsizetype start = 0;
        qsizetype end = 0;
        double top = 0;
        double height = 0;
        std::unique_ptr<QTextLayout> layout;
        std::vector<double> tops;  // of its lines, within the piece, and its height at the end
    };

    void layOutFrom(std::size_t firstPiece);
    Piece makePiece(qsizetype start, qsizetype length, double top) const;
    std::size_t unchangedPieces(const QString& text, const QList<QTextLayout::FormatRange>& formats) const;
    void wrap(QTextLine& line, const QString& text) const;
    const Piece& pieceAt(double y) const;
    const Piece& pieceOf(qsizetype position) const;
    static int lineIndexAt(const Piece& piece, double y);

    QString text_;
    QList<QTextLayout::FormatRange> formats_;
    Metrics metrics_;
    double width_ = 0;
    double height_ = 0;
    bool isRightToLeft_ = false;
    std::vector<Piece> pieces_;
};

}  // namespace ovrin
