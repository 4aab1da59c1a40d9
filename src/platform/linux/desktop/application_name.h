// How the assistant is known on the session bus (Desktop Entry Specification, "D-Bus Activation"), and to the desktop
// by its entry file.
#pragma once

namespace ovrin {

inline constexpr const char* applicationId = "com.quel.ovrin";
inline constexpr const char* applicationObjectPath = "/com/quel/ovrin";
inline constexpr const char* applicationInterface = "org.freedesktop.Application";

}  // namespace ovrin
