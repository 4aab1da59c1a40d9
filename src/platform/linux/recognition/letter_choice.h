// Characters of one shape, told apart by their neighbours.
#pragma once

#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Where the reader hesitated between two characters of one shape (O and 0; l, I and 1; ー and a dash; ッ and ツ), takes
// the one that its neighbours make likelier. What the reader is sure of stays.
void chooseByNeighbours(Reading& reading);

// Gives marks beside Chinese or Japanese characters their wide form where they stand in a wide cell: the picture shows
// a blank there that no space makes. em: pixels; characters on their ink.
void widenMarksByGaps(Reading& reading, double em);

}  // namespace ovrin
