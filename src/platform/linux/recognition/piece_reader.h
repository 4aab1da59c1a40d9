// Reads the pieces of one picture: with the network first, then, where the picture shows that it could not, with a second
// reader.
#pragma once

#include <memory>
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

// Replaces readings of the network (one for each piece) by those of the second readers where they are right. Of a piece
// whole words go over to the other reader.
void readOtherScripts(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces,
                      const LineRecognizer& network, std::span<const std::unique_ptr<SecondReader>> readers,
                      const std::stop_token& stop);

}  // namespace ovrin
