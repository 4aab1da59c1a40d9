// Whether the process has a session bus.
#pragma once

#include <cstdint>

#include "base/environment.h"

namespace ovrin {

enum class SessionBus : std::uint8_t { none, ofProcess };

// To be asked before any library is: where there is none, libraries would start one of their own.
SessionBus sessionBus(const Environment& environment);

}  // namespace ovrin
