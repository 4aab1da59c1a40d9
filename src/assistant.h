// The desktop assistant, composed and run: the program without arguments.
#pragma once

#include "platform/linux/qt/application_bus.h"

namespace ovrin {

// Runs until the user quits it, or returns at once when another one runs in this session already, with a failure when
// that one does not answer. secondStart: what that one is told. Gives the exit status; throws Error when it cannot
// start.
int runAssistant(ApplicationBus::SecondStart secondStart);

}  // namespace ovrin
