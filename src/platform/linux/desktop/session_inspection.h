// Asks the session what it can do: every answer is that of a call made now, to the display, the bus or the file system.
#pragma once

#include <vector>

#include "platform/capability.h"

namespace ovrin {

// Blocks for as long as it takes: some tenths of a second, or some seconds where a service doesn't answer. Never throws
// for what is missing.
std::vector<Capability> inspectSession();

}  // namespace ovrin
