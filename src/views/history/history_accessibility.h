// What assistive technology is told about the history: the list is a list, and its rows are its items, from the top
// to the bottom.
#pragma once

namespace ovrin {

// For all lists and rows to come; once is enough.
void installHistoryAccessibility();

}  // namespace ovrin
