// Finds the ink of each character: what readers say about places is only roughly right.
#pragma once

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Moves left and right of every character to the ink that is most likely its own. Characters that touch share their
// ink evenly. Nothing changes where the piece's ink can't be relied on. columns: those that the reader saw.
void placeOnInk(Reading& reading, const LinePiece& piece, const ColumnRun& columns = {0, 1 << 30});

}  // namespace ovrin
