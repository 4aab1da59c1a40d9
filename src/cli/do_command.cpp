#include "cli/do_command.h"

#include <cstdlib>

#include "base/error.h"

namespace ovrin::cli {

int performInAssistant(const Do& command, RunningAssistant& assistant) {
    using Reply = RunningAssistant::Reply;
    if (assistant.perform(command.action) == Reply::accepted) return EXIT_SUCCESS;
    if (command.startsAssistant && assistant.start() && assistant.perform(command.action) == Reply::accepted) {
        return EXIT_SUCCESS;
    }
    throw Error("ovrin: the assistant is not running; start it with 'ovrin'");
}

}  // namespace ovrin::cli
