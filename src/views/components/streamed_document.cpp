#include "views/components/streamed_document.h"

#include <QPainter>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <cmath>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/quote_breaks.h"

namespace ovrin {

using Ending = MarkdownReader::Ending;
using Kind = MarkdownLine::Kind;
using Position = StreamedDocument::Position;
using Range = StreamedDocument::Range;

namespace {

constexpr double listIndent = 24;
constexpr double quoteIndent = 14;
constexpr double quoteBarWidth = 3;
constexpr double numberGap = 5;
constexpr double bulletGap = 9;
constexpr double codePadding = 12;
constexpr double codeRadius = 9;
constexpr double ruleHeight = 1;
constexpr double narrowestIndented = 40;  // points of a text's width

MarkdownLine plainLine(const QString& source) {
    MarkdownLine line;
    line.text = source;
    if (line.text.endsWith('\r')) line.text.chop(1);
    return line;
}

}  // namespace

double StreamedDocument::Block::bottom() const {
    return top + (line.kind == Kind::rule ? ruleHeight : wrapped.height());
}

void StreamedDocument::setLook(Look look) {
    look_ = std::move(look);
    for (Block& block : blocks_) fill(block);
    place(0);
}

void StreamedDocument::startOver() {
    source_.clear();
    decoder_.resetState();
    reader_ = {};
    openLine_.clear();
    isOpenLineShown_ = hasGap_ = false;
    blocks_.clear();
    firstChanged_ = 0;
}

void StreamedDocument::setText(std::string_view utf8, Ending ending) {
    if (!utf8.starts_with(source_)) startOver();
    if (utf8.size() == source_.size() && ending == ending_ && !blocks_.empty()) return;
    ending_ = ending;
    firstChanged_ = blocks_.empty() ? 0 : blocks_.size() - 1;
    const std::string_view news = utf8.substr(source_.size());
    const QString decoded = decoder_.decode(QByteArrayView(news.data(), static_cast<qsizetype>(news.size())));
    source_ += news;

    QStringView rest(decoded);
    for (qsizetype end = rest.indexOf('\n'); end >= 0; end = rest.indexOf('\n')) {
        openLine_ += rest.first(end);
        readOpenLine(Ending::known);
        openLine_.clear();
        isOpenLineShown_ = false;
        rest = rest.sliced(end + 1);
    }
    openLine_ += rest;
    const MarkdownReader before = reader_;
    const bool hadGap = hasGap_;
    const int fence = fence_;
    if (!openLine_.isEmpty()) readOpenLine(ending);
    reader_ = before;
    hasGap_ = hadGap;
    fence_ = fence;
    place(firstChanged_);
}

// Reads the source's last line and shows it in place of what was shown of it before.
void StreamedDocument::readOpenLine(Ending ending) {
    MarkdownLine line = mode_ == Mode::plain ? plainLine(openLine_) : reader_.read(openLine_, ending);
    if (line.kind == Kind::nothing || line.kind == Kind::fence) {
        if (isOpenLineShown_) blocks_.pop_back();
        isOpenLineShown_ = false;
        firstChanged_ = std::min(firstChanged_, blocks_.size());
        hasGap_ = true;
        if (line.kind == Kind::fence) ++fence_;
        return;
    }
    show(std::move(line));
}

void StreamedDocument::show(MarkdownLine line) {
    if (line.kind != Kind::code) breakAtQuotes(line);
    if (!isOpenLineShown_) blocks_.emplace_back();
    Block& block = blocks_.back();
    block.line = std::move(line);
    block.fence = fence_;
    block.hasGap = hasGap_;
    const std::size_t index = blocks_.size() - 1;
    block.plainStart = plainEnd(index) + separator(index).size() + marker(index).size();
    fill(block);
    isOpenLineShown_ = true;
    hasGap_ = false;
}

void StreamedDocument::fill(Block& block) const {
    block.wrapped.set(block.line.text, lineFormats(block.line, look_), lineMetrics(block.line, look_),
                      textWidth(block.line));
}

void StreamedDocument::setWidth(double width) {
    if (width == width_) return;
    width_ = width;
    for (Block& block : blocks_) block.wrapped.setWidth(textWidth(block.line));
    place(0);
}

double StreamedDocument::usedWidth() const {
    double widest = 0;
    for (const Block& block : blocks_) widest = std::max(widest, indent(block.line) + block.wrapped.usedWidth());
    return widest;
}

void StreamedDocument::place(std::size_t firstBlock) {
    changedFrom_ = firstBlock == 0 ? 0 : blocks_[firstBlock - 1].bottom();
    double y = changedFrom_;
    for (std::size_t i = firstBlock; i < blocks_.size(); ++i) {
        y += gapAbove(i);
        blocks_[i].top = y;
        y = blocks_[i].bottom();
    }
    if (!blocks_.empty() && blocks_.back().isCode()) y += codePadding;
    height_ = std::ceil(y);
    // The background of a code block and the bar of a quote reach up from the block that grew.
    if (firstBlock > 0) changedFrom_ = blocks_[firstBlock - 1].top;
}

double StreamedDocument::gapAbove(std::size_t index) const {
    const Block& block = blocks_[index];
    if (index == 0) return block.isCode() ? codePadding : 0;
    if (mode_ == Mode::plain) return 0;
    const Block& above = blocks_[index - 1];
    const bool continuesCode = block.isCode() && above.isCode() && block.fence == above.fence;
    if (continuesCode) return 0;
    const double padding = (block.isCode() ? codePadding : 0) + (above.isCode() ? codePadding : 0);
    if (padding > 0) return padding + 8;
    if (block.line.kind == Kind::rule || above.line.kind == Kind::rule) return 14;
    if (block.line.kind == Kind::heading) return block.line.level <= 2 ? 16 : 12;
    if (above.line.kind == Kind::heading) return 6;
    if (block.line.kind == Kind::listItem && above.line.kind == Kind::listItem) return block.hasGap ? 6 : 4;
    if (block.line.kind == Kind::listItem || above.line.kind == Kind::listItem) return block.hasGap ? 8 : 4;
    return block.hasGap ? 10 : 0;
}

double StreamedDocument::indent(const MarkdownLine& line) {
    return line.depth * listIndent + (line.kind == Kind::quote ? quoteIndent : 0) +
           (line.kind == Kind::code ? codePadding : 0);
}

double StreamedDocument::textWidth(const MarkdownLine& line) const {
    const double right = line.kind == Kind::code ? codePadding : 0;
    // What is deeply indented reaches beyond a narrow document rather than breaking at every character.
    return std::max(width_ - indent(line) - right, std::min(width_, narrowestIndented));
}

// What runs from the right is indented there.
double StreamedDocument::left(const Block& block) const {
    if (!block.wrapped.isRightToLeft()) return indent(block.line);
    return width_ - indent(block.line) - textWidth(block.line);
}

void StreamedDocument::draw(QPainter& painter, const QRectF& clip, const Range& selection) const {
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = blockIndexAt(clip.top() - codePadding); i < blocks_.size(); ++i) {
        const Block& block = blocks_[i];
        if (block.top - codePadding > clip.bottom()) break;
        const QPointF origin(left(block), block.top);
        const QRectF within = clip.translated(-origin);
        drawCodeBackground(painter, i, clip);
        drawInlineCode(painter, block, within);
        drawSelection(painter, i, within, selection);
        drawAdornments(painter, i);
        block.wrapped.draw(painter, origin, within);
    }
}

// One rounded background for all lines of a fenced block, drawn with the first of them that is in sight.
void StreamedDocument::drawCodeBackground(QPainter& painter, std::size_t index, const QRectF& clip) const {
    const Block& block = blocks_[index];
    const auto isSameCode = [&](std::size_t other) {
        return other < blocks_.size() && blocks_[other].isCode() && blocks_[other].fence == block.fence;
    };
    if (!block.isCode() || (index > 0 && isSameCode(index - 1) && index > blockIndexAt(clip.top() - codePadding)))
        return;
    // Ends out of sight need not be found, only to lie far enough outside.
    std::size_t first = index;
    while (first > 0 && isSameCode(first - 1) && blocks_[first].top > clip.top() - 2 * codePadding) --first;
    std::size_t last = index;
    while (isSameCode(last + 1) && blocks_[last].bottom() < clip.bottom() + 2 * codePadding) ++last;
    const double left = block.line.depth * listIndent;
    const QRectF area(left, blocks_[first].top - codePadding, width_ - left,
                      blocks_[last].bottom() - blocks_[first].top + 2 * codePadding);
    fillRounded(painter, area, codeRadius, look_.codeBackground);
    painter.setPen(QPen(look_.line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(0.5, 0.5, -0.5, -0.5), codeRadius - 0.5, codeRadius - 0.5);
}

// List markers, the bar beside a quote, rules.
void StreamedDocument::drawAdornments(QPainter& painter, std::size_t index) const {
    const Block& block = blocks_[index];
    switch (block.line.kind) {
        case Kind::listItem:
            return drawMarker(painter, block);
        case Kind::quote:
            return drawQuoteBar(painter, index);
        case Kind::rule:
            return painter.fillRect(QRectF(0, block.top, width_, ruleHeight), look_.line);
        default:
            return;
    }
}

void StreamedDocument::drawMarker(QPainter& painter, const Block& block) const {
    const WrappedText::Metrics metrics = lineMetrics(block.line, look_);
    const bool isRightToLeft = block.wrapped.isRightToLeft();
    const double markerWidth = QFontMetricsF(metrics.font).horizontalAdvance(block.line.marker);
    const double gap = block.line.marker.size() > 1 ? numberGap : bulletGap;
    const double x = isRightToLeft ? width_ - indent(block.line) + gap : indent(block.line) - gap - markerWidth;
    painter.setFont(metrics.font);
    painter.setPen(look_.quietText);
    painter.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);  // the dot follows the number
    painter.drawText(QPointF(x, block.top + metrics.baseline()), block.line.marker);
}

void StreamedDocument::drawQuoteBar(QPainter& painter, std::size_t index) const {
    const Block& block = blocks_[index];
    const bool isRightToLeft = block.wrapped.isRightToLeft();
    const bool goesOn = index > 0 && blocks_[index - 1].line.kind == Kind::quote &&
                        blocks_[index - 1].wrapped.isRightToLeft() == isRightToLeft;
    const double top = goesOn ? blocks_[index - 1].bottom() : block.top;
    const double inset = block.line.depth * listIndent;
    const double x = isRightToLeft ? width_ - inset - quoteBarWidth : inset;
    painter.fillRect(QRectF(x, top, quoteBarWidth, block.bottom() - top), look_.line);
}

void StreamedDocument::drawInlineCode(QPainter& painter, const Block& block, const QRectF& clip) const {
    for (const MarkdownSpan& span : block.line.spans) {
        if (!span.isCode) continue;
        for (const QRectF& area : block.wrapped.areas(span.start, span.start + span.length, clip)) {
            fillRounded(painter, area.translated(left(block), block.top).adjusted(-2.5, 2, 2.5, -2), 4.5,
                        look_.inlineCodeBackground);
        }
    }
}

void StreamedDocument::drawSelection(QPainter& painter, std::size_t index, const QRectF& clip,
                                     const Range& selection) const {
    if (selection.begin >= selection.end || index < selection.begin.block || index > selection.end.block) return;
    const Block& block = blocks_[index];
    const qsizetype start = index == selection.begin.block ? selection.begin.offset : 0;
    const qsizetype end = index == selection.end.block ? selection.end.offset : block.line.text.size();
    for (const QRectF& area : block.wrapped.areas(start, end, clip)) {
        painter.fillRect(area.translated(left(block), block.top), look_.selection);
    }
}

std::size_t StreamedDocument::blockIndexAt(double y) const {
    const auto next = std::ranges::upper_bound(blocks_, y, {}, &Block::top);
    return next == blocks_.begin() ? 0 : static_cast<std::size_t>(next - blocks_.begin()) - 1;
}

Position StreamedDocument::end() const {
    if (blocks_.empty()) return {};
    return {blocks_.size() - 1, blocks_.back().line.text.size()};
}

Position StreamedDocument::existing(Position position) const {
    if (blocks_.empty()) return {};
    if (position.block >= blocks_.size()) return end();
    return {position.block, std::min(position.offset, blocks_[position.block].line.text.size())};
}

Position StreamedDocument::at(const QPointF& point) const {
    if (blocks_.empty() || point.y() < 0) return begin();
    if (point.y() >= height_) return end();
    std::size_t index = blockIndexAt(point.y());
    // In a gap the nearer block counts.
    if (index + 1 < blocks_.size() && point.y() - blocks_[index].bottom() > blocks_[index + 1].top - point.y()) ++index;
    const Block& block = blocks_[index];
    return {index, block.wrapped.positionAt(point - QPointF(left(block), block.top))};
}

Range StreamedDocument::wordAt(Position position) const {
    if (blocks_.empty()) return {};
    const QString& text = blocks_[position.block].line.text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    finder.setPosition(position.offset);
    const qsizetype begin = finder.isAtBoundary() ? position.offset : finder.toPreviousBoundary();
    finder.setPosition(position.offset);
    const qsizetype end = finder.toNextBoundary();
    return {{position.block, std::max<qsizetype>(begin, 0)}, {position.block, end < 0 ? text.size() : end}};
}

Range StreamedDocument::blockAt(Position position) const {
    if (blocks_.empty()) return {};
    return {{position.block, 0}, {position.block, blocks_[position.block].line.text.size()}};
}

// The next place in the given direction, in this block or the next one.
Position StreamedDocument::beside(Position position, int step) const {
    if (blocks_.empty()) return {};
    const QString& text = blocks_[position.block].line.text;
    if (step > 0 && position.offset >= text.size()) {
        return position.block + 1 < blocks_.size() ? Position{position.block + 1, 0} : position;
    }
    if (step < 0 && position.offset == 0) {
        return position.block > 0 ? blockAt({position.block - 1, 0}).end : position;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(position.offset);
    qsizetype next = step > 0 ? finder.toNextBoundary() : finder.toPreviousBoundary();
    // Quote breaks are no characters of the text.
    if (step > 0 && next < text.size() && isQuoteBreak(text, next)) ++next;
    if (step < 0 && next > 0 && isQuoteBreak(text, next)) --next;
    return {position.block, std::clamp<qsizetype>(next, 0, text.size())};
}

Position StreamedDocument::nextCharacter(Position position) const {
    return beside(position, +1);
}

Position StreamedDocument::previousCharacter(Position position) const {
    return beside(position, -1);
}

Position StreamedDocument::nextWord(Position position) const {
    Position next = nextCharacter(position);
    if (next.block != position.block) return next;
    const QString& text = blocks_[position.block].line.text;
    next = wordAt(position).end;
    while (next.offset < text.size() && text[next.offset].isSpace()) ++next.offset;
    return next;
}

Position StreamedDocument::previousWord(Position position) const {
    const Position previous = previousCharacter(position);
    if (previous.block != position.block) return previous;
    const QString& text = blocks_[position.block].line.text;
    Position next = previous;
    while (next.offset > 0 && text[next.offset].isSpace()) --next.offset;
    return wordAt(next).begin;
}

Position StreamedDocument::lineBegin(Position position) const {
    if (blocks_.empty()) return {};
    return {position.block, blocks_[position.block].wrapped.lineAt(position.offset).start};
}

Position StreamedDocument::lineEnd(Position position) const {
    if (blocks_.empty()) return {};
    return {position.block, blocks_[position.block].wrapped.lineAt(position.offset).end};
}

QRectF StreamedDocument::areaOf(Position position) const {
    if (blocks_.empty()) return {};
    const Block& block = blocks_[position.block];
    const QRectF line = block.wrapped.lineAt(position.offset).area;
    return {left(block) + block.wrapped.xAt(position.offset), block.top + line.top(), 1, line.height()};
}

QString StreamedDocument::linkAt(const QPointF& point) const {
    if (blocks_.empty()) return {};
    const Block& block = blocks_[blockIndexAt(point.y())];
    const qsizetype character = block.wrapped.characterAt(point - QPointF(left(block), block.top));
    for (const MarkdownSpan& span : block.line.spans) {
        if (character >= span.start && character < span.start + span.length) return span.link;
    }
    return {};
}

QRectF StreamedDocument::characterArea(Position position) const {
    if (blocks_.empty()) return {};
    const Position next = nextCharacter(position);
    const Block& block = blocks_[position.block];
    const qsizetype end = next.block == position.block ? next.offset : block.line.text.size();
    const std::vector<QRectF> areas =
        block.wrapped.areas(position.offset, end, QRectF(0, 0, width_, block.wrapped.height()));
    return areas.empty() ? areaOf(position) : areas.front().translated(left(block), block.top);
}

QString StreamedDocument::separator(std::size_t index) const {
    if (index == 0) return {};
    return blocks_[index].hasGap && mode_ == Mode::markdown ? QStringLiteral("\n\n") : QStringLiteral("\n");
}

QString StreamedDocument::marker(std::size_t index) const {
    const MarkdownLine& line = blocks_[index].line;
    if (line.kind != Kind::listItem) return {};
    return QString(qsizetype{2} * (line.depth - 1), ' ') + line.marker + ' ';
}

QString StreamedDocument::text(const Range& range) const {
    QString result;
    if (blocks_.empty() || range.begin >= range.end) return result;
    for (std::size_t i = range.begin.block; i <= range.end.block; ++i) {
        const Block& block = blocks_[i];
        if (i > range.begin.block) result += separator(i);
        const qsizetype start = i == range.begin.block ? range.begin.offset : 0;
        const qsizetype end = i == range.end.block ? range.end.offset : block.line.text.size();
        const bool isPartOnly = range.begin.block == range.end.block;
        if (start == 0 && !isPartOnly) result += marker(i);
        result += withoutQuoteBreaks(block.line.text, start, end);
    }
    return result;
}

QString StreamedDocument::plainText() const {
    QString result;
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        const QString& text = blocks_[i].line.text;
        result += separator(i) + marker(i) + withoutQuoteBreaks(text, 0, text.size());
    }
    return result;
}

qsizetype StreamedDocument::plainEnd(std::size_t blockCount) const {
    if (blockCount == 0) return 0;
    const std::size_t last = blockCount - 1;
    return offsetOf({last, blocks_[last].line.text.size()});
}

qsizetype StreamedDocument::offsetOf(Position position) const {
    if (blocks_.empty()) return 0;
    const Block& block = blocks_[position.block];
    return block.plainStart + withoutQuoteBreaks(block.line.text, 0, position.offset).size();
}

Position StreamedDocument::positionAt(qsizetype offset) const {
    if (blocks_.empty()) return {};
    const auto next = std::ranges::upper_bound(blocks_, offset, {}, &Block::plainStart);
    if (next == blocks_.begin()) return begin();
    const auto index = static_cast<std::size_t>(next - blocks_.begin()) - 1;
    const QString& text = blocks_[index].line.text;
    qsizetype left = offset - blocks_[index].plainStart;
    qsizetype at = 0;
    for (; left > 0 && at < text.size(); ++at) left -= isQuoteBreak(text, at) ? 0 : 1;
    if (left > 0 && next != blocks_.end()) return {index + 1, 0};
    return {index, at};
}

StreamedDocument::Stretch StreamedDocument::plainLineAt(qsizetype offset) const {
    if (blocks_.empty()) return {};
    const Position position = positionAt(offset);
    const Position first = lineBegin(position);
    const qsizetype lead = first.offset == 0 ? marker(first.block).size() : 0;
    return {.begin = offsetOf(first) - lead, .end = offsetOf(lineEnd(position))};
}

}  // namespace ovrin
