// Puts the spaces between words from the gaps that the picture shows.
#pragma once

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Sets spaceBefore of every character to 0 or 1. Characters must be on their ink.
void placeSpaces(Reading& reading, const LinePiece& piece);

}  // namespace ovrin
