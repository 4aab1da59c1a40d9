// The desktop assistant, composed and run: the program without arguments.
#pragma once

#include "platform/launch.h"

namespace ovrin {

// Runs until the user quits it, or returns at once when another one runs in this session already, with a failure when
// that one does not answer. Gives the exit status; throws Error when it cannot start.
int runAssistant(Launch launch);

}  // namespace ovrin
