// Asks the session what it can do: every answer is that of a call made now, to the display, the bus or the file system.
#pragma once

#include <cstdint>
#include <stop_token>
#include <vector>

#include "platform/capability.h"

namespace ovrin {

class TextRecognizer;

// How the program's windows come to the compositor of a Wayland session.
enum class WindowPath : std::uint8_t { native, throughXWayland };

// Does what InspectSession says. The recogniser loads its models for that.
std::vector<Capability> inspectSession(WindowPath windows, TextRecognizer& recognizer,
                                       const std::stop_token& stop = {});

}  // namespace ovrin
