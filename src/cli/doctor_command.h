// ovrin doctor: what the session can do for the program, and by what.
#pragma once

#include <vector>

#include "cli/arguments.h"
#include "cli/terminal.h"
#include "platform/capability.h"

namespace ovrin::cli {

// The exit status: failure when the screen cannot be captured, which is what the program is for.
int showCapabilities(const Doctor& command, const std::vector<Capability>& capabilities, Terminal& terminal);

}  // namespace ovrin::cli
