// "ovrin do": hands a command to the assistant, which is started for it where none runs.
#pragma once

#include "cli/arguments.h"
#include "platform/running_assistant.h"

namespace ovrin::cli {

// The exit status. Throws Error when no assistant can be reached.
int performInAssistant(const Do& command, RunningAssistant& assistant);

}  // namespace ovrin::cli
