// Puts pieces of text into reading order and tells which of them make one visual line.
#pragma once

#include <cstddef>
#include <vector>

#include "base/geometry.h"

namespace ovrin {

// The pieces of one visual line, left to right, as indices into the boxes.
using TextRow = std::vector<std::size_t>;

// Rows from top to bottom, except where two well-filled columns stand beside a clean gutter: there each column is read
// to its end.
std::vector<TextRow> readingOrder(const std::vector<PixelRect>& boxes);

}  // namespace ovrin
