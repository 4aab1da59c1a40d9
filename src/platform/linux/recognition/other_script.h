// Has other readers read what the network could not.
#pragma once

#include <span>
#include <stop_token>
#include <vector>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/reading.h"
#include "platform/linux/recognition/second_reader.h"

namespace ovrin {

// The share (0..1) of the ink in these columns of the piece that lies away from every character of the reading. A
// network that can't read a script leaves its ink unexplained while it is sure of the rest.
double unexplainedInk(const Reading& reading, const LinePiece& piece, const ColumnRun& columns);

// Replaces readings of the network by those of the second readers where the picture shows that they are right. Words go
// over as a whole, but for endings right behind a word in Latin letters.
void readOtherScript(std::vector<LinePiece>& pieces, const LineRecognizer& network,
                     std::span<SecondReader* const> readers, const std::stop_token& stop);

}  // namespace ovrin
