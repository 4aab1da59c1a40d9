// Tells the marks of a user interface from text: check boxes, bullets, arrows, emoji, logos.
#pragma once

#include "platform/linux/recognition/line_piece.h"

namespace ovrin {

// Takes out of the reading what is no text but a mark that stands beside it or alone. Characters must be on their ink.
void removeControlMarks(LinePiece& piece);

}  // namespace ovrin
