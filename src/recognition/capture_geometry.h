// The geometry of choosing a part of the screen: what counts as a selection, and where the overlay draws its labels.
#pragma once

#include <string>

#include "base/geometry.h"

namespace ovrin::capture {

// The rectangle between two corners, whichever way it was dragged.
LocalRect selectionBetween(LocalPoint start, LocalPoint end);

// Large enough to be meant: more than four points both ways.
bool isSelection(const LocalRect& rectangle);

// "640 × 480": whole points, fractions dropped.
std::string sizeLabelText(const LocalRect& selection);

// Where the size label stands: below the selection, above it where there is no room; never outside the view on the
// right or at the top. text is the measured size of its text.
LocalRect sizeLabelFrame(const LocalRect& selection, const LocalRect& bounds, Size text);

// The pill that tells what to do before there is a selection.
struct HintLayout {
    LocalRect pill;
    LocalPoint hintOrigin;  // upper-left corner of the hint's text
    LocalRect keyBox;
    LocalPoint keyOrigin;  // upper-left corner of the key's text
};
HintLayout hintLayout(const LocalRect& bounds, Size hint, Size key);

}  // namespace ovrin::capture
