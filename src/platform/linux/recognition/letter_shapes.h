// Characters of the same shape, told apart by their neighbours: the language correction of a reading.
#pragma once

#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Corrects letters that only their neighbours tell apart (I and l, o and 0) and marks that readers take for others.
void correctLetterShapes(Reading& reading);

// Gives marks between Chinese or Japanese characters their wide form, for a reader that knows only the narrow one.
void widenMarks(Reading& reading);

// Gives marks beside Chinese or Japanese characters their wide form where they stand in a wide cell: the picture shows
// a blank there that no space makes. em: pixels; characters on their ink.
void widenMarksByGaps(Reading& reading, double em);

}  // namespace ovrin
