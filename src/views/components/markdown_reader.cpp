#include "views/components/markdown_reader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ovrin {

namespace {

using Ending = MarkdownReader::Ending;
using Kind = MarkdownLine::Kind;

constexpr qsizetype tabWidth = 4;

qsizetype runLength(QStringView text, qsizetype start, QChar character) {
    qsizetype end = start;
    while (end < text.size() && text[end] == character) ++end;
    return end - start;
}

bool isSpaceAt(QStringView text, qsizetype index) {
    return index < 0 || index >= text.size() || text[index].isSpace();
}

bool isWordAt(QStringView text, qsizetype index) {
    return index >= 0 && index < text.size() && text[index].isLetterOrNumber();
}

// Reads the marks within a line.
class InlineReader {
public:
    InlineReader(QStringView source, Ending ending) : source_(source), ending_(ending) {}

    void readInto(MarkdownLine& line) && {
        qsizetype end = source_.size();
        // Half a mark at the end of a growing line would flash up and vanish.
        while (ending_ == Ending::open && end > 0 && isMark(source_[end - 1])) --end;
        read(0, end, {});
        line.text = std::move(text_);
        line.spans = std::move(spans_);
    }

private:
    static bool isMark(QChar character) { return character == '*' || character == '_' || character == '`'; }

    void read(qsizetype begin, qsizetype end, const MarkdownSpan& style) {
        Searches searches;
        qsizetype position = begin;
        while (position < end) {
            const qsizetype next = readMark(position, end, style, searches);
            if (next > position) {
                position = next;
            } else {
                append(source_.sliced(position, 1), style);
                ++position;
            }
        }
    }

    // Which closing marks are known not to come in this stretch, so that a row of opening ones stays cheap.
    struct Searches {
        bool strong = true;
        bool emphasis = true;
        bool code = true;
        bool link = true;
    };

    // Where the reading goes on after a mark at the position; the position itself when there is none.
    qsizetype readMark(qsizetype position, qsizetype end, const MarkdownSpan& style, Searches& searches) {
        const QChar character = source_[position];
        if (character == '\\' && position + 1 < end && source_[position + 1].isPunct()) {
            append(source_.sliced(position + 1, 1), style);
            return position + 2;
        }
        if (character == '`') return readCode(position, end, style, searches);
        if (character == '*' || character == '_') return readEmphasis(position, end, style, searches);
        if (!style.link.isEmpty()) return position;
        if (character == '[' || (character == '!' && position + 1 < end && source_[position + 1] == '[')) {
            return readLink(position, end, style, searches);
        }
        if (character == '<') return readAngleLink(position, end, style);
        if (character == 'h' || character == 'H') return readBareLink(position, end, style);
        return position;
    }

    qsizetype readCode(qsizetype position, qsizetype end, MarkdownSpan style, Searches& searches) {
        const qsizetype ticks = runLength(source_.first(end), position, '`');
        const qsizetype begin = position + ticks;
        qsizetype close = begin;
        while (searches.code && close < end) {
            const qsizetype run = runLength(source_.first(end), close, '`');
            if (run == ticks) break;
            close += std::max<qsizetype>(run, 1);
        }
        if (!searches.code || close >= end) {
            searches.code = false;
            if (ending_ == Ending::known) {
                append(source_.sliced(position, ticks), style);
                return begin;
            }
            close = end;
        }
        QStringView code = source_.sliced(begin, close - begin);
        // A blank beside the marks only keeps them apart from ticks of the code.
        if (code.size() > 2 && code.front() == ' ' && code.back() == ' ') code = code.sliced(1, code.size() - 2);
        style.isCode = true;
        append(code, style);
        return std::min(close + ticks, end);
    }

    qsizetype readEmphasis(qsizetype position, qsizetype end, const MarkdownSpan& style, Searches& searches) {
        const QChar character = source_[position];
        const bool isStrong = runLength(source_.first(end), position, character) >= 2;
        const qsizetype marks = isStrong ? 2 : 1;
        const qsizetype begin = position + marks;
        if (begin >= end || source_[begin].isSpace()) return position;
        if (character == '_' && isWordAt(source_, position - 1)) return position;

        bool& maySearch = isStrong ? searches.strong : searches.emphasis;
        qsizetype close = maySearch ? closingMark(character, marks, begin, end) : -1;
        qsizetype next = close + marks;
        if (close < 0) {
            maySearch = false;
            // A single asterisk is more often a sign of its own: it waits for its partner.
            if (ending_ == Ending::known || !isStrong) return position;
            close = next = end;
        }
        MarkdownSpan inner = style;
        (isStrong ? inner.isBold : inner.isItalic) = true;
        read(begin, close, inner);
        return next;
    }

    qsizetype closingMark(QChar character, qsizetype marks, qsizetype begin, qsizetype end) const {
        const QStringView stretch = source_.first(end);
        qsizetype position = begin;
        while (position < end) {
            if (stretch[position] == '\\') {
                position += 2;
            } else if (stretch[position] == '`') {
                position = afterCode(position, end);
            } else if (stretch[position] == character) {
                const qsizetype run = runLength(stretch, position, character);
                const bool isInside = character == '_' && isWordAt(stretch, position + run);
                // Three marks close the inner emphasis first: the outer one takes the last of them.
                const bool fits = marks == 2 ? run >= 2 : run != 2;
                if (fits && position > begin && !isSpaceAt(stretch, position - 1) && !isInside) {
                    return position + run - marks;
                }
                position += run;
            } else {
                ++position;
            }
        }
        return -1;
    }

    qsizetype afterCode(qsizetype position, qsizetype end) const {
        const QStringView stretch = source_.first(end);
        const qsizetype ticks = runLength(stretch, position, '`');
        for (qsizetype close = position + ticks; close < end;) {
            const qsizetype run = runLength(stretch, close, '`');
            if (run == ticks) return close + run;
            close += std::max<qsizetype>(run, 1);
        }
        return position + ticks;
    }

    // [words](target "title"), and a picture, which shows as a link to it.
    qsizetype readLink(qsizetype position, qsizetype end, MarkdownSpan style, Searches& searches) {
        if (!searches.link) return position;
        const qsizetype words = source_[position] == '!' ? position + 2 : position + 1;
        const qsizetype bracket = matching('[', ']', words, end);
        if (bracket < 0) {
            searches.link = false;
            return position;
        }
        if (bracket + 1 >= end || source_[bracket + 1] != '(' || bracket == words) return position;
        qsizetype close = matching('(', ')', bracket + 2, end);
        if (close < 0) {
            if (ending_ == Ending::known) return position;
            close = end;
        }
        QStringView target = source_.sliced(bracket + 2, close - bracket - 2).trimmed();
        if (const qsizetype blank = target.indexOf(' '); blank >= 0) target = target.first(blank);
        if (target.startsWith('<') && target.endsWith('>')) target = target.sliced(1, target.size() - 2);
        style.link = target.toString();
        read(words, bracket, style);
        return std::min(close + 1, end);
    }

    qsizetype matching(QChar open, QChar close, qsizetype begin, qsizetype end) const {
        int depth = 1;
        for (qsizetype position = begin; position < end; ++position) {
            if (source_[position] == '\\') {
                ++position;
            } else if (source_[position] == open) {
                ++depth;
            } else if (source_[position] == close && --depth == 0) {
                return position;
            }
        }
        return -1;
    }

    static bool isAddress(QStringView text) {
        return text.startsWith(u"https://", Qt::CaseInsensitive) || text.startsWith(u"http://", Qt::CaseInsensitive);
    }

    // <https://…>
    qsizetype readAngleLink(qsizetype position, qsizetype end, MarkdownSpan style) {
        const QStringView rest = source_.sliced(position + 1, end - position - 1);
        if (!isAddress(rest)) return position;
        const qsizetype close = rest.indexOf('>');
        if (close < 0) return position;
        style.link = rest.first(close).toString();
        append(rest.first(close), style);
        return position + close + 2;
    }

    // An address in the middle of text: it ends where no address goes on, before the sentence's own punctuation.
    qsizetype readBareLink(qsizetype position, qsizetype end, MarkdownSpan style) {
        const QStringView rest = source_.sliced(position, end - position);
        const bool isInsideWord = isWordAt(source_, position - 1) && source_[position - 1].unicode() <= '~';
        if (!isAddress(rest) || isInsideWord) return position;
        qsizetype length = rest.indexOf(u"://") + 3;
        const qsizetype host = length;
        int parentheses = 0;
        while (length < rest.size()) {
            const QChar character = rest[length];
            if (character.unicode() <= ' ' || character.unicode() > '~' || QStringView(u"<>\"`").contains(character))
                break;
            if (character == '*' && length + 1 < rest.size() && rest[length + 1] == '*') break;
            if (character == '(') ++parentheses;
            if (character == ')' && --parentheses < 0) break;
            ++length;
        }
        while (length > host && QStringView(u".,;:!?'*_").contains(rest[length - 1])) --length;
        if (length == host) return position;
        style.link = rest.first(length).toString();
        append(rest.first(length), style);
        return position + length;
    }

    void append(QStringView words, const MarkdownSpan& style) {
        if (words.isEmpty()) return;
        const qsizetype start = text_.size();
        text_ += words;
        if (!style.isBold && !style.isItalic && !style.isCode && style.link.isEmpty()) return;
        MarkdownSpan span = style;
        span.start = start;
        span.length = words.size();
        if (!spans_.isEmpty()) {
            MarkdownSpan& last = spans_.back();
            const bool isSame = last.isBold == span.isBold && last.isItalic == span.isItalic &&
                                last.isCode == span.isCode && last.link == span.link;
            if (isSame && last.start + last.length == start) {
                last.length += span.length;
                return;
            }
        }
        spans_.push_back(std::move(span));
    }

    QStringView source_;
    Ending ending_;
    QString text_;
    QList<MarkdownSpan> spans_;
};

void readInline(MarkdownLine& line, QStringView source, Ending ending) {
    InlineReader(source, ending).readInto(line);
}

bool isRule(QStringView content) {
    if (content.size() < 3) return false;
    const QChar character = content.front();
    if (!QStringView(u"-*_").contains(character)) return false;
    qsizetype marks = 0;
    for (const QChar each : content) {
        if (each == character) {
            ++marks;
        } else if (!each.isSpace()) {
            return false;
        }
    }
    return marks >= 3;
}

// The length of a list marker at the front ("-", "12."), which a blank or the line's end must follow; 0 for none.
qsizetype listMarkerLength(QStringView content) {
    qsizetype length = 0;
    if (QStringView(u"-*+•").contains(content.front())) {
        length = 1;
    } else {
        while (length < std::min<qsizetype>(content.size(), 4) && content[length].unicode() >= '0' &&
               content[length].unicode() <= '9') {
            ++length;
        }
        if (length == 0 || length == content.size() || (content[length] != '.' && content[length] != ')')) return 0;
        ++length;
    }
    return isSpaceAt(content, length) ? length : 0;
}

// What only the rest of the line will tell: a lone list mark, number signs without a heading.
bool isUndecided(QStringView content) {
    if (content.size() <= 6 && content.count('#') == content.size()) return true;
    return content.size() <= 3 && QStringView(u"-*_+").contains(content.front()) &&
           content.count(content.front()) == content.size();
}

}  // namespace

MarkdownLine MarkdownReader::read(QStringView line, Ending ending) {
    if (line.endsWith('\r')) line.chop(1);
    qsizetype indent = 0;
    qsizetype characters = 0;
    while (characters < line.size() && (line[characters] == ' ' || line[characters] == '\t')) {
        indent += line[characters] == '\t' ? tabWidth - indent % tabWidth : 1;
        ++characters;
    }
    if (auto fenced = readFence(line, indent, ending)) return *std::move(fenced);

    const QStringView content = line.sliced(characters).trimmed();
    MarkdownLine result;
    if (content.isEmpty() || (ending == Ending::open && isUndecided(content))) {
        result.kind = Kind::nothing;
        return result;
    }
    if (isRule(content)) {
        result.kind = Kind::rule;
        listIndents_.clear();
        return result;
    }
    const qsizetype signs = runLength(content, 0, '#');
    if (signs >= 1 && signs <= 6 && isSpaceAt(content, signs)) {
        result.kind = Kind::heading;
        result.level = static_cast<int>(signs);
        listIndents_.clear();
        QStringView words = content.sliced(signs).trimmed();
        while (words.endsWith('#')) words.chop(1);
        readInline(result, words.trimmed(), ending);
        return result;
    }
    if (auto item = readListItem(content, indent, ending)) return *std::move(item);

    result.depth = depthAt(indent);
    QStringView words = content;
    if (content.front() == '>') {
        result.kind = Kind::quote;
        while (words.startsWith('>')) words = words.sliced(1).trimmed();
    }
    readInline(result, words, ending);
    if (result.text.isEmpty()) result.kind = Kind::nothing;
    return result;
}

std::optional<MarkdownLine> MarkdownReader::readFence(QStringView line, qsizetype indent, Ending ending) {
    const QStringView content = line.trimmed();
    MarkdownLine result;
    if (fence_) {
        const qsizetype run = runLength(content, 0, fence_->character);
        if (run >= fence_->length && run == content.size()) {
            fence_.reset();
            result.kind = Kind::fence;
            return result;
        }
        if (ending == Ending::open && run > 0 && run == content.size()) {
            result.kind = Kind::nothing;
            return result;
        }
        result.kind = Kind::code;
        result.depth = static_cast<int>(listIndents_.size());
        qsizetype stripped = 0;
        while (stripped < std::min(fence_->indent, line.size()) && line[stripped].isSpace()) ++stripped;
        result.text = line.sliced(stripped).toString();
        return result;
    }
    if (content.isEmpty() || (content.front() != '`' && content.front() != '~')) return std::nullopt;
    const qsizetype run = runLength(content, 0, content.front());
    if (run < 3 || content.sliced(run).contains(content.front())) return std::nullopt;
    depthAt(indent);
    fence_ = Fence{.character = content.front(), .length = run, .indent = indent};
    result.kind = Kind::fence;
    return result;
}

std::optional<MarkdownLine> MarkdownReader::readListItem(QStringView content, qsizetype indent, Ending ending) {
    const qsizetype length = listMarkerLength(content);
    if (length == 0) return std::nullopt;
    // One or two columns more than the list's own markers are still the same list, as models don't count carefully.
    while (!listIndents_.empty() && indent < listIndents_.back()) listIndents_.pop_back();
    if (listIndents_.empty() || indent >= listIndents_.back() + 2) listIndents_.push_back(indent);

    MarkdownLine result;
    result.kind = Kind::listItem;
    result.depth = static_cast<int>(listIndents_.size());
    constexpr std::array bullets{u'•', u'◦', u'▪'};
    result.marker = length > 1 ? content.first(length).toString()
                               : QString(QChar(bullets[static_cast<std::size_t>(result.depth - 1) % bullets.size()]));
    readInline(result, content.sliced(length).trimmed(), ending);
    return result;
}

// The lists that a line which is no item belongs to: those whose markers lie to the left of it.
int MarkdownReader::depthAt(qsizetype indent) {
    while (!listIndents_.empty() && indent <= listIndents_.back()) listIndents_.pop_back();
    return static_cast<int>(listIndents_.size());
}

}  // namespace ovrin
