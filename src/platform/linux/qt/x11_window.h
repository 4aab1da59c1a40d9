// What the window toolkit does not ask of the X server and its window manager for a window of the program. Main thread;
// nothing happens where the windows are not on X11.
#pragma once

#include "platform/linux/qt/window_role.h"

class QColor;
class QWindow;

namespace ovrin::x11 {

// Whether the window manager knows windows that draw a shadow of their own around their frame.
bool knowsOwnShadows();

void setShadowMargins(QWindow& window, const ShadowMargins& margins);

// What the server fills the window with when it comes up, before the program has drawn anything. The window exists
// already and is not shown yet; where it is translucent, so is the colour.
void setFirstColor(QWindow& window, const QColor& color);

// Has the window manager show the window, which has not been shown yet, on every workspace.
void keepOnEveryWorkspace(QWindow& window);

// Brings a window that is shown to the front, with the keyboard. The program is told of its shortcuts on another
// connection than the window's, so that to the window manager the user seems to be at work elsewhere, which is a reason
// to refuse: the request is made in the user's name, at the server's present time.
void activate(QWindow& window);

// Whether what is typed goes to the window, or would if nobody had grabbed the keyboard: a grab leaves the server's
// input focus where it is. False where the windows are not on X11. One round trip.
bool hasInputFocus(const QWindow& window);

// Has the window manager show its menu of the window at the pointer. False where it knows no such request.
bool showWindowMenu(QWindow& window);

}  // namespace ovrin::x11
