// Tells from the evidence of the picture whether the network could read a piece, and joins its reading with another
// reader's, character by character.
#pragma once

#include <functional>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

// The share (0..1) of the piece's ink that lies away from every character of the reading. A network that can't read a
// script leaves its ink unexplained while staying sure of the rest.
double unexplainedInk(const Reading& reading, const LinePiece& piece);

// Joins two readings of the same piece. `knows` tells whether the network can name a character at all: where the other
// reader saw one that it can't, the other is believed; Latin words are the network's.
Reading joinReadings(const Reading& network, const Reading& other, double glyphHeight,
                     const std::function<bool(char32_t)>& knows);

}  // namespace ovrin
