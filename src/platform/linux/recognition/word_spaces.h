// Puts the spaces between words, and the wide forms of marks, from the gaps that the picture shows.
#pragma once

#include <vector>

#include "platform/linux/recognition/line_piece.h"

namespace ovrin {

// Sets spaceBefore of every character to 0 or 1, and gives marks in wide cells their wide form. The pieces are those of
// one picture, characters on their ink.
void placeSpaces(std::vector<LinePiece>& pieces);

}  // namespace ovrin
