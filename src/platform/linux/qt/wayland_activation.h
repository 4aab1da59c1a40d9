// Bringing a window to the front by the desktop's token for it (xdg-activation), in the place of the window toolkit,
// which takes tokens from nowhere but the environment: other threads read that.
#pragma once

#include <string>

class QWindow;

namespace ovrin::wayland {

// False where the window is not on Wayland or the compositor knows no tokens. Main thread.
bool activate(QWindow& window, const std::string& token);

}  // namespace ovrin::wayland
