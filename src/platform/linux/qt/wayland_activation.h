// Bringing windows to the front by the desktop's tokens for them (xdg-activation), in the place of the window toolkit,
// which takes tokens from nowhere but the environment, which other threads read, and gives none to programs.
#pragma once

#include <string>

class QWindow;

namespace ovrin::wayland {

// Brings the window to the front. False where it is not on Wayland or the compositor knows no tokens. Main thread.
bool activate(QWindow& window, const std::string& token);

// A token for a program that is started from this window, which has the keyboard; empty where activate() is in vain.
// Main thread; waits for the compositor.
std::string requestActivationToken(QWindow& window);

}  // namespace ovrin::wayland
