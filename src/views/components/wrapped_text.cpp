#include "views/components/wrapped_text.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ovrin {

namespace {

// Characters to a piece: what one appended word lays out again at most.
constexpr qsizetype pieceLength = 480;

using Formats = QList<QTextLayout::FormatRange>;

bool isRightToLeftCharacter(QChar character) {
    const QChar::Direction direction = character.direction();
    return direction == QChar::DirR || direction == QChar::DirAL || direction == QChar::DirAN;
}

bool isClosing(QChar character) {
    return QStringView(u"，。、；：！？）》」』】〉〕％”’…,.;:!?)]}%").contains(character);
}

// Where two lists of formats begin to say different things.
qsizetype firstDifference(const Formats& a, const Formats& b) {
    qsizetype common = 0;
    while (common < std::min(a.size(), b.size()) && a[common] == b[common]) ++common;
    const bool isOver[] = {common == a.size(), common == b.size()};
    if (isOver[0] && isOver[1]) return std::numeric_limits<qsizetype>::max();
    if (isOver[0]) return b[common].start;
    if (isOver[1]) return a[common].start;
    if (a[common].start != b[common].start || a[common].format != b[common].format) {
        return std::min(a[common].start, b[common].start);
    }
    return a[common].start + std::min(a[common].length, b[common].length);
}

Formats formatsWithin(const Formats& formats, qsizetype start, qsizetype length) {
    Formats within;
    for (const QTextLayout::FormatRange& range : formats) {
        const qsizetype from = std::max<qsizetype>(range.start, start);
        const qsizetype to = std::min<qsizetype>(range.start + range.length, start + length);
        if (from < to) within.push_back({static_cast<int>(from - start), static_cast<int>(to - from), range.format});
    }
    return within;
}

}  // namespace

double WrappedText::Metrics::baseline() const {
    const QFontMetricsF sizes(font);
    return std::round((lineHeight - sizes.ascent() - sizes.descent()) / 2 + sizes.ascent());
}

void WrappedText::set(const QString& text, const Formats& formats, const Metrics& metrics, double width) {
    std::size_t kept = 0;
    if (metrics == metrics_ && width == width_) {
        if (text == text_ && formats == formats_) return;
        kept = unchangedPieces(text, formats);
    }
    text_ = text;
    formats_ = formats;
    metrics_ = metrics;
    width_ = width;
    if (kept == 0) isRightToLeft_ = metrics_.followsText && text_.isRightToLeft();
    layOutFrom(kept);
}

void WrappedText::setWidth(double width) {
    if (width == width_) return;
    width_ = width;
    layOutFrom(0);
}

std::size_t WrappedText::unchangedPieces(const QString& text, const Formats& formats) const {
    const auto [mine, others] = std::mismatch(text_.begin(), text_.end(), text.begin(), text.end());
    const qsizetype same = std::min<qsizetype>(mine - text_.begin(), firstDifference(formats_, formats));
    std::size_t kept = 0;
    // A piece's layout reaches beyond its end, to where its last line was found to break; the last one ends with the
    // text and so with what may still come.
    while (kept + 1 < pieces_.size() && pieces_[kept].start + pieces_[kept].layout->text().size() <= same) ++kept;
    return kept;
}

void WrappedText::layOutFrom(std::size_t firstPiece) {
    pieces_.resize(firstPiece);
    double top = pieces_.empty() ? 0 : pieces_.back().top + pieces_.back().height;
    qsizetype start = pieces_.empty() ? 0 : pieces_.back().end;
    do {
        const qsizetype rest = text_.size() - start;
        const bool isLast = rest <= pieceLength * 3 / 2;
        pieces_.push_back(makePiece(start, isLast ? rest : pieceLength, top));
        top += pieces_.back().height;
        start = pieces_.back().end;
    } while (start < text_.size());
    height_ = top;
}

WrappedText::Piece WrappedText::makePiece(qsizetype start, qsizetype length, double top) const {
    Piece piece{.start = start, .end = start + length, .top = top, .height = 0, .layout = nullptr, .tops = {0}};
    if (length > 0 && text_[start + length - 1].isHighSurrogate()) --length;
    piece.layout = std::make_unique<QTextLayout>(text_.sliced(start, length), metrics_.font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(isRightToLeft_ ? Qt::RightToLeft : Qt::LeftToRight);
    option.setAlignment(isRightToLeft_ ? Qt::AlignRight : Qt::AlignLeft);
    option.setTabStopDistance(4 * QFontMetricsF(metrics_.font).horizontalAdvance(' '));
    piece.layout->setTextOption(option);
    piece.layout->setCacheEnabled(true);  // else every drawing shapes the text again
    piece.layout->setFormats(formatsWithin(formats_, start, length));

    const double baseline = metrics_.baseline();
    piece.layout->beginLayout();
    for (QTextLine line = piece.layout->createLine(); line.isValid(); line = piece.layout->createLine()) {
        wrap(line, piece.layout->text());
        const double extra = std::max(0.0, std::ceil(line.ascent() - baseline));
        line.setPosition({0, piece.tops.back() + baseline + extra - line.ascent()});
        piece.tops.push_back(piece.tops.back() + extra +
                             std::max(metrics_.lineHeight, std::ceil(baseline + line.descent())));
    }
    piece.layout->endLayout();

    // The last line of a piece within the paragraph may go on: it opens the next piece.
    const int lines = piece.layout->lineCount();
    if (start + length < text_.size() && lines > 1) {
        piece.end = start + piece.layout->lineAt(lines - 1).textStart();
        piece.tops.pop_back();
    } else {
        piece.end = start + length;
    }
    if (piece.tops.size() == 1) piece.tops.push_back(metrics_.lineHeight);
    piece.height = piece.tops.back();
    return piece;
}

void WrappedText::wrap(QTextLine& line, const QString& text) const {
    line.setLineWidth(width_);
    // A word without a place to break is cut where the line is full, be it before the punctuation that closes it.
    const qsizetype end = line.textStart() + line.textLength();
    if (line.textLength() < 2 || end >= text.size() || !isClosing(text[end]) || text[end - 1].isSpace()) return;
    line.setNumColumns(line.textLength() - 1, width_);
}

double WrappedText::usedWidth() const {
    double widest = 0;
    for (const Piece& piece : pieces_) {
        for (int i = 0; i < piece.layout->lineCount(); ++i) {
            widest = std::max(widest, piece.layout->lineAt(i).naturalTextWidth());
        }
    }
    return widest;
}

int WrappedText::lineIndexAt(const Piece& piece, double y) {
    const auto next = std::upper_bound(piece.tops.begin(), piece.tops.end(), y - piece.top);
    const auto last = static_cast<std::ptrdiff_t>(piece.tops.size()) - 2;
    return static_cast<int>(std::clamp<std::ptrdiff_t>(next - piece.tops.begin() - 1, 0, last));
}

const WrappedText::Piece& WrappedText::pieceAt(double y) const {
    const auto next = std::ranges::upper_bound(pieces_, y, {}, &Piece::top);
    return next == pieces_.begin() ? *next : *std::prev(next);
}

const WrappedText::Piece& WrappedText::pieceOf(qsizetype position) const {
    const auto next = std::ranges::upper_bound(pieces_, position, {}, &Piece::start);
    return next == pieces_.begin() ? *next : *std::prev(next);
}

void WrappedText::draw(QPainter& painter, const QPointF& origin, const QRectF& clip) const {
    for (const Piece& piece : pieces_) {
        if (piece.top > clip.bottom()) break;
        if (piece.top + piece.height < clip.top()) continue;
        const int first = lineIndexAt(piece, clip.top());
        const int last = std::min(lineIndexAt(piece, clip.bottom()), piece.layout->lineCount() - 1);
        for (int i = first; i <= last; ++i) {
            piece.layout->lineAt(i).draw(&painter, origin + QPointF(0, piece.top));
        }
    }
}

std::vector<QRectF> WrappedText::areas(qsizetype start, qsizetype end, const QRectF& clip) const {
    std::vector<QRectF> areas;
    for (const Piece& piece : pieces_) {
        if (piece.end <= start && piece.end < text_.size()) continue;
        if (piece.start >= end || piece.top > clip.bottom()) break;
        if (piece.top + piece.height < clip.top()) continue;
        const bool isMixed = std::ranges::any_of(piece.layout->text(), isRightToLeftCharacter);
        for (int i = 0; i + 1 < static_cast<int>(piece.tops.size()) && i < piece.layout->lineCount(); ++i) {
            const QTextLine line = piece.layout->lineAt(i);
            const qsizetype from = std::max<qsizetype>(start - piece.start, line.textStart());
            const qsizetype to = std::min<qsizetype>(end - piece.start, line.textStart() + line.textLength());
            if (from >= to) continue;
            const double top = piece.top + piece.tops[static_cast<std::size_t>(i)];
            const double bottom = piece.top + piece.tops[static_cast<std::size_t>(i) + 1];
            const auto add = [&](double a, double b) {
                const double left = std::min({a, b, width_});
                const double right = std::min(std::max(a, b), width_);
                if (!areas.empty() && areas.back().top() == top && areas.back().right() >= left - 0.01 &&
                    areas.back().left() <= right + 0.01) {
                    areas.back() |= QRectF(left, top, right - left, bottom - top);
                } else {
                    areas.emplace_back(left, top, right - left, bottom - top);
                }
            };
            if (!isMixed) {
                add(line.cursorToX(static_cast<int>(from)), line.cursorToX(static_cast<int>(to)));
                continue;
            }
            // Neighbours in the text may stand apart on screen, and where the direction changes the toolkit knows one
            // place for the cursor of the two that there are.
            for (const QGlyphRun& run : line.glyphRuns(static_cast<int>(from), static_cast<int>(to - from))) {
                add(run.boundingRect().left(), run.boundingRect().right());
            }
        }
    }
    return areas;
}

qsizetype WrappedText::positionAt(const QPointF& point) const {
    const Piece& piece = pieceAt(point.y());
    const int index = lineIndexAt(piece, point.y());
    if (index >= piece.layout->lineCount()) return piece.start;
    return piece.start + piece.layout->lineAt(index).xToCursor(point.x());
}

qsizetype WrappedText::characterAt(const QPointF& point) const {
    if (point.y() < 0 || point.y() >= height_) return -1;
    const Piece& piece = pieceAt(point.y());
    const int index = lineIndexAt(piece, point.y());
    if (index >= piece.layout->lineCount()) return -1;
    const QTextLine line = piece.layout->lineAt(index);
    const QRectF text = line.naturalTextRect();
    if (point.x() < text.left() || point.x() >= text.right()) return -1;
    return piece.start + line.xToCursor(point.x(), QTextLine::CursorOnCharacter);
}

WrappedText::Line WrappedText::lineAt(qsizetype position) const {
    const Piece& piece = pieceOf(position);
    for (int i = 0; i + 1 < static_cast<int>(piece.tops.size()) && i < piece.layout->lineCount(); ++i) {
        const QTextLine line = piece.layout->lineAt(i);
        const qsizetype start = piece.start + line.textStart();
        const qsizetype end = start + line.textLength();
        if (position >= end && end < text_.size()) continue;
        const double top = piece.tops[static_cast<std::size_t>(i)];
        return {start, end, QRectF(0, piece.top + top, width_, piece.tops[static_cast<std::size_t>(i) + 1] - top)};
    }
    return {position, position, QRectF(0, piece.top, width_, piece.height)};
}

double WrappedText::xAt(qsizetype position) const {
    const Piece& piece = pieceOf(position);
    for (int i = 0; i < piece.layout->lineCount(); ++i) {
        const QTextLine line = piece.layout->lineAt(i);
        const qsizetype end = piece.start + line.textStart() + line.textLength();
        if (position < end || end >= text_.size()) return line.cursorToX(static_cast<int>(position - piece.start));
    }
    return 0;
}

}  // namespace ovrin
