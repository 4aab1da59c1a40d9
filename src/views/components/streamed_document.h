// The contents of a streamed text, wrapped to a width and ready to be drawn: one block for each line of the source.
//
// Text that grows is read and laid out again from its last line on; all before it stays as it is. Coordinates are
// points from the document's upper-left corner. Main thread.
#pragma once

#include <QRectF>
#include <QString>
#include <QStringDecoder>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "views/components/line_typesetting.h"
#include "views/components/markdown_reader.h"
#include "views/components/wrapped_text.h"

class QPainter;

namespace ovrin {

class StreamedDocument {
public:
    enum class Mode : std::uint8_t { plain, markdown };

    using Look = DocumentLook;

    // A place between two characters.
    struct Position {
        std::size_t block = 0;
        qsizetype offset = 0;
        auto operator<=>(const Position&) const = default;  // NOLINT(modernize-use-nullptr): there is no pointer
    };
    struct Range {
        Position begin;
        Position end;
    };

    explicit StreamedDocument(Mode mode) : mode_(mode) {}

    void setLook(Look look);

    // Takes on the whole text so far, in UTF-8.
    void setText(std::string_view utf8, MarkdownReader::Ending ending);
    void setWidth(double width);
    double width() const { return width_; }
    double height() const { return height_; }
    // What of the width its lines take up.
    double usedWidth() const;
    // Where the newest text made the document look different; everything above is as before.
    double changedFrom() const { return changedFrom_; }

    void draw(QPainter& painter, const QRectF& clip, const Range& selection) const;

    Position begin() const { return {}; }
    Position end() const;
    // The same place, or the nearest one there is.
    Position existing(Position position) const;
    Position at(const QPointF& point) const;
    // Where the word or the block around a character begins and ends.
    Range wordAt(Position position) const;
    Range blockAt(Position position) const;
    // The neighbours of a position.
    Position nextCharacter(Position position) const;
    Position previousCharacter(Position position) const;
    Position nextWord(Position position) const;
    Position previousWord(Position position) const;
    Position lineBegin(Position position) const;
    Position lineEnd(Position position) const;
    // The line that holds the position; its width is that of a caret there.
    QRectF areaOf(Position position) const;
    // What the character after the position takes up of its line.
    QRectF characterArea(Position position) const;

    // Where the link under the point leads; empty for none.
    QString linkAt(const QPointF& point) const;

    // The text as it is copied: with list markers, blank lines between paragraphs.
    QString text(const Range& range) const;

    // The whole of it, with the marker of every list item, and where in it a position lies. What is no place of its
    // own, a marker or a blank line, belongs to the nearest one.
    QString plainText() const;
    qsizetype plainLength() const { return plainEnd(blocks_.size()); }
    qsizetype offsetOf(Position position) const;
    Position positionAt(qsizetype offset) const;
    // The line on screen around a place in the plain text, with the marker it begins with.
    struct Stretch {
        qsizetype begin = 0;
        qsizetype end = 0;
    };
    Stretch plainLineAt(qsizetype offset) const;

private:
    // What one source line shows.
    struct Block {
        MarkdownLine line;
        WrappedText wrapped{};
        int fence = 0;             // which code block it belongs to
        bool hasGap = false;       // blank lines go before it
        double top = 0;            // of its text
        qsizetype plainStart = 0;  // of its text, in the plain text
        double bottom() const;
        bool isCode() const { return line.kind == MarkdownLine::Kind::code; }
    };

    void startOver();
    void readOpenLine(MarkdownReader::Ending ending);
    void show(MarkdownLine line);
    void fill(Block& block) const;
    void place(std::size_t firstBlock);
    double gapAbove(std::size_t index) const;
    static double indent(const MarkdownLine& line);
    double textWidth(const MarkdownLine& line) const;
    double left(const Block& block) const;  // edge of its text

    void drawCodeBackground(QPainter& painter, std::size_t index, const QRectF& clip) const;
    void drawAdornments(QPainter& painter, std::size_t index) const;
    void drawMarker(QPainter& painter, const Block& block) const;
    void drawQuoteBar(QPainter& painter, std::size_t index) const;
    void drawSelection(QPainter& painter, std::size_t index, const QRectF& clip, const Range& selection) const;
    void drawInlineCode(QPainter& painter, const Block& block, const QRectF& clip) const;

    QString separator(std::size_t index) const;  // before the block
    QString marker(std::size_t index) const;
    qsizetype plainEnd(std::size_t blockCount) const;

    std::size_t blockIndexAt(double y) const;
    Position beside(Position position, int step) const;

    Mode mode_;
    Look look_;

    std::string source_;
    QStringDecoder decoder_{QStringDecoder::Utf8};
    MarkdownReader reader_;  // its state before the open line
    QString openLine_;       // the source's last line
    MarkdownReader::Ending ending_ = MarkdownReader::Ending::known;
    bool isOpenLineShown_ = false;
    bool hasGap_ = false;
    int fence_ = 0;

    std::vector<Block> blocks_;
    std::size_t firstChanged_ = 0;
    double changedFrom_ = 0;
    double width_ = 400;
    double height_ = 0;
};

}  // namespace ovrin
