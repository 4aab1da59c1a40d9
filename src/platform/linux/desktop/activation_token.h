// The word of the desktop that the user wants the window that comes up next, which lets it come to the front. Whoever
// starts a program passes it in the environment, and the program to a running instance in its call.
#pragma once

#include <optional>
#include <string>

#include "base/environment.h"

namespace ovrin::activation {

// Its names among the platform data of org.freedesktop.Application: on Wayland, on X11.
inline constexpr const char* tokenKey = "activation-token";
inline constexpr const char* startupKey = "desktop-startup-id";

// What this process was started with; none where its starter gave none.
inline std::optional<std::string> token(const Environment& environment) {
    return environment.value("XDG_ACTIVATION_TOKEN");
}
inline std::optional<std::string> startupId(const Environment& environment) {
    return environment.value("DESKTOP_STARTUP_ID");
}

}  // namespace ovrin::activation
