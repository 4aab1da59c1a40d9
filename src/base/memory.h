// What the C library keeps of the memory that was given back to it.
#pragma once

namespace ovrin {

// Hands it to the system: for the end of work that took much. Takes some milliseconds. Any thread.
void giveBackUnusedMemory();

}  // namespace ovrin
