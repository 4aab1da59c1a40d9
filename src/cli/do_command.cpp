#include "cli/do_command.h"

#include <cstdlib>

#include "base/error.h"

namespace ovrin::cli {

int performInAssistant(const Do& command, RunningAssistant& assistant) {
    if (assistant.perform(command.action) == RunningAssistant::Reply::notRunning) {
        throw Error("ovrin: the assistant is not running; start it with 'ovrin'");
    }
    return EXIT_SUCCESS;
}

}  // namespace ovrin::cli
