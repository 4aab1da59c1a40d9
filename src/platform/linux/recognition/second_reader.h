// A reader for scripts that the recognition network does not know.
#pragma once

#include <stop_token>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

class SecondReader {
public:
    virtual ~SecondReader() = default;

    // Whether the character is of the script that this reader is there for.
    virtual bool isOwn(char32_t character) const = 0;

    // Reads these columns of the piece, which hold ink, from left to right whatever the script. Places are pixels from
    // the piece's left edge. Any thread, several at once. Empty when the reader's data is damaged; CancellationError
    // after a stop.
    virtual Reading read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) = 0;
};

}  // namespace ovrin
