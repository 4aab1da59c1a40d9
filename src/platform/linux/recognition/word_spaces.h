// Puts the spaces between words from the gaps that the picture shows.
#pragma once

#include <vector>

#include "platform/linux/recognition/line_piece.h"

namespace ovrin {

// Sets spaceBefore of every character to 0 or 1. The pieces are those of one picture, characters on their ink: a font
// of fixed width in long pieces tells what the short ones are set in.
void placeSpaces(std::vector<LinePiece>& pieces);

}  // namespace ovrin
