// Zero-width spaces that let lines break at Chinese quotation marks, and texts without them. They are put in for the
// layout only and are no characters of the text.
#pragma once

#include <QString>

#include "views/components/markdown_reader.h"

namespace ovrin {

// Puts them into the line; its spans keep covering what they covered.
void breakAtQuotes(MarkdownLine& line);

// Whether the character at the index is one of them.
bool isQuoteBreak(const QString& text, qsizetype index);

// The part of the text from start to before end.
QString withoutQuoteBreaks(const QString& text, qsizetype start, qsizetype end);

}  // namespace ovrin
