// ovrin history: past results, newest first.
#pragma once

#include "cli/arguments.h"
#include "cli/terminal.h"

namespace ovrin {
class HistoryStore;
}

namespace ovrin::cli {

// Returns the exit status, also 0 when a query matched nothing. Throws OutputClosed and Error from the terminal.
int listHistory(const ListHistory& command, const HistoryStore& history, Terminal& terminal);

}  // namespace ovrin::cli
