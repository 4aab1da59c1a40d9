#include "views/components/quote_breaks.h"

#include <QStringView>

namespace ovrin {

namespace {

bool isIdeographic(QChar character) {
    const char16_t code = character.unicode();
    return (code >= 0x2E80 && code < 0xA4D0) || (code >= 0xAC00 && code < 0xD7A4) ||
           (code >= 0xF900 && code < 0xFB00) || (code >= 0xFF00 && code < 0xFFEF) || character.isSurrogate();
}

bool isClosing(QChar character) {
    return QStringView(u"，。、；：！？）》」』】〉〕％”’").contains(character);
}

bool isOpening(QChar character) {
    return QStringView(u"（《「『【〈〔“‘").contains(character);
}

constexpr QChar quoteBreak(0x200B);

// Unicode's rules let no line end beside quotation marks, as they can't tell opening from closing ones. Within Chinese
// the curled marks can be told apart: a zero-width space before and after a quoted stretch lets lines break there.
// Returns where they stand in the new text.
QList<qsizetype> insertQuoteBreaks(QString& text) {
    QList<qsizetype> places;
    for (qsizetype i = 1; i < text.size(); ++i) {
        const QChar before = text[i - 1];
        const QChar after = text[i];
        const bool opens =
            (after == u'“' || after == u'‘') && (isIdeographic(before) || before == u'”') && !isOpening(before);
        const bool closes = (before == u'”' || before == u'’') && isIdeographic(after) && !isClosing(after);
        if (!opens && !closes) continue;
        text.insert(i, quoteBreak);
        places.push_back(i);
        ++i;
    }
    return places;
}

}  // namespace

void breakAtQuotes(MarkdownLine& line) {
    if (!line.text.contains(u'“') && !line.text.contains(u'’') && !line.text.contains(u'”')) return;
    const QList<qsizetype> places = insertQuoteBreaks(line.text);
    // A place is counted in the new text, so each span moves over those before it, one after another.
    for (MarkdownSpan& span : line.spans) {
        for (const qsizetype place : places) {
            if (place <= span.start) {
                ++span.start;
            } else if (place < span.start + span.length) {
                ++span.length;
            }
        }
    }
}

bool isQuoteBreak(const QString& text, qsizetype index) {
    if (text[index] != quoteBreak) return false;
    const auto isQuote = [&text](qsizetype place) {
        return place >= 0 && place < text.size() && QStringView(u"“”‘’").contains(text[place]);
    };
    return isQuote(index - 1) || isQuote(index + 1);
}

QString withoutQuoteBreaks(const QString& text, qsizetype start, qsizetype end) {
    QString result;
    result.reserve(end - start);
    for (qsizetype i = start; i < end; ++i) {
        if (!isQuoteBreak(text, i)) result += text[i];
    }
    return result;
}

}  // namespace ovrin
