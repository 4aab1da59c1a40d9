// Which display servers the environment names.
#pragma once

#include "base/environment.h"

namespace ovrin {

inline bool hasWaylandDisplay(const Environment& environment) {
    return environment.value("WAYLAND_DISPLAY").has_value();
}
inline bool hasX11Display(const Environment& environment) {
    return environment.value("DISPLAY").has_value();
}
inline bool hasDisplay(const Environment& environment) {
    return hasWaylandDisplay(environment) || hasX11Display(environment);
}

}  // namespace ovrin
