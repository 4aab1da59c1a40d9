// The geometry of choosing a part of the screen: what counts as a selection, and where the overlay draws its labels.
//
// Everything is in points. "View space" is an overlay's own, origin at its lower-left corner, y upwards; "window space"
// is the same across all displays, origin at the primary display's lower-left corner; "display space" has its origin at
// the primary display's upper-left corner, y downwards.
#pragma once

#include <optional>
#include <string>

#include "base/geometry.h"

namespace ovrin::capture {

// The rectangle between two corners, whichever way it was dragged.
Rect selectionBetween(Point start, Point end);

// Large enough to be meant: more than four points both ways.
bool isSelection(const Rect& rectangle);

// From window space to display space; unchanged when there is no display.
Rect toDisplaySpace(const Rect& rectangle, std::optional<double> primaryDisplayHeight);

// "640 × 480": whole points, fractions dropped.
std::string sizeLabelText(const Rect& selection);

// Where the size label stands: below the selection, above it where there is no room; never outside the view on the
// right or at the top. text is the measured size of its text.
Rect sizeLabelFrame(const Rect& selection, const Rect& bounds, Size text);

// The pill that tells what to do before there is a selection.
struct HintLayout {
    Rect pill;
    Point hintOrigin;  // lower-left corner of the hint's text
    Rect keyBox;
    Point keyOrigin;  // lower-left corner of the key's text
};
HintLayout hintLayout(const Rect& bounds, Size hint, Size key);

}  // namespace ovrin::capture
