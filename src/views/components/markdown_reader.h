// Reads the light Markdown of model answers line by line: headings, lists, quotes, fenced code; bold, italic, code and
// links within a line. A line break in the source is a line break on screen, so that a line never changes once the next
// one has begun, and an answer can be read anew from its last line alone while it streams in.
//
// A value: copy it to keep the state before a line. What is no well-formed Markdown shows as it was written.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>
#include <vector>

namespace ovrin {

// A stretch of a line's text that looks different from the rest. Stretches don't overlap and are in order.
struct MarkdownSpan {
    qsizetype start = 0;
    qsizetype length = 0;
    bool isBold = false;
    bool isItalic = false;
    bool isCode = false;
    QString link{};  // where it leads; empty for no link

    bool operator==(const MarkdownSpan&) const = default;
};

struct MarkdownLine {
    enum class Kind : std::uint8_t {
        paragraph,
        heading,
        listItem,
        quote,
        code,    // one line of a fenced block
        fence,   // the line that opens or closes a block; shows nothing
        rule,    // a horizontal line
        nothing  // blank, or the beginning of something that is not there yet
    };

    Kind kind = Kind::paragraph;
    int level = 0;     // of a heading: 1 to 6
    int depth = 0;     // how many lists it lies in; a list item counts its own
    QString marker{};  // of a list item: a bullet, or its number as it was written
    QString text{};    // what is shown, without marks
    QList<MarkdownSpan> spans{};

    bool operator==(const MarkdownLine&) const = default;
};

class MarkdownReader {
public:
    enum class Ending : std::uint8_t {
        known,  // the line is as it will stay
        open    // more of it may come: marks that wait for their partner already count, half ones don't show
    };

    // line has no line break.
    MarkdownLine read(QStringView line, Ending ending);

private:
    struct Fence {
        QChar character;
        qsizetype length = 0;
        qsizetype indent = 0;
    };

    std::optional<MarkdownLine> readFence(QStringView line, qsizetype indent, Ending ending);
    std::optional<MarkdownLine> readListItem(QStringView content, qsizetype indent, Ending ending);
    int depthAt(qsizetype indent);

    std::optional<Fence> fence_;
    std::vector<qsizetype> listIndents_;  // columns of the markers of the lists around the line
};

}  // namespace ovrin
