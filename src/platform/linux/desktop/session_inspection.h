// Asks the session what it can do: every answer is that of a call made now, to the display, the bus or the file system.
#pragma once

#include <stop_token>
#include <vector>

#include "platform/capability.h"

namespace ovrin {

class TextRecognizer;

// As InspectSession says. The recogniser has its models loaded.
std::vector<Capability> inspectSession(TextRecognizer& recognizer, const std::stop_token& stop = {});

}  // namespace ovrin
