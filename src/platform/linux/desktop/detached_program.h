// A program that goes on when this one has ended, or in its place.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

#include "base/environment.h"

namespace ovrin {

// Starts the program in a session of its own, so that no key of this program's terminal reaches it, with all variables
// of the environment and without input or output. arguments: what follows its name. Gives the number of the process,
// for whose end the caller may wait. Throws Error when it can't be started. Any thread.
pid_t startDetached(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                    const Environment& environment);

// Puts the program in the place of this one, which leaves it nothing but its standard channels. Returns when it can't
// be started. Any thread.
void becomeProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const Environment& environment);

}  // namespace ovrin
