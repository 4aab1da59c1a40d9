// What assistive technology is told of streamed texts: the text interface over their plain text, and what changes in
// it.
#pragma once

class QString;

namespace ovrin {

class OVStreamingText;

// For all texts to come; once is enough.
void installStreamingTextAccessibility();

// The text is another one than before: what was inserted, and what it took the place of. Usually that is the end.
void tellTextChange(OVStreamingText& text, const QString& before);

// The cursor and the selection have moved.
void tellSelection(OVStreamingText& text);

// An answer has come to its end. Nothing is said of texts without a name, nor where the toolkit can't say anything.
void tellEndOfText(OVStreamingText& text);

}  // namespace ovrin
