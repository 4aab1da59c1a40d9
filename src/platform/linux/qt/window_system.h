// Which window system the toolkit speaks to, decided once before it starts.
#pragma once

#include <cstdint>

namespace ovrin {

enum class WindowSystem : std::uint8_t {
    x11,     // also that which a Wayland session has for X11 programs
    wayland  // of a compositor that puts windows where programs want them, and hands the clipboard to all of them
};

// Sets the toolkit's environment, but for what the user has set there. Before the QApplication and any other thread.
WindowSystem chooseWindowSystem();

}  // namespace ovrin
