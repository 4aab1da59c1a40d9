// Which programs are terminals: there the usual keys of copy interrupt what runs.
#pragma once

#include <string_view>

namespace ovrin {

// name: the class of an X11 window, or the application id of a Wayland one.
bool isTerminalProgram(std::string_view name);

}  // namespace ovrin
