// "ovrin do": hands a command to the running assistant.
#pragma once

#include "cli/arguments.h"
#include "platform/running_assistant.h"

namespace ovrin::cli {

// The exit status. Throws Error when no assistant runs or it cannot be reached.
int performInAssistant(const Do& command, RunningAssistant& assistant);

}  // namespace ovrin::cli
