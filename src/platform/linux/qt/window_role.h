// What the windows of the program are to the desktop, and what only the desktop can do for them. Here and in the files
// behind it stands all that differs between window systems; views know nothing of them. Main thread.
#pragma once

#include <cstdint>
#include <string>

class QColor;
class QWidget;
class QWindow;

namespace ovrin {

enum class WindowRole : std::uint8_t {
    ordinary,  // as those of any program, with a frame of its own: panel, input translation, history, settings
    chat,      // the same on every workspace
    alert,     // above the window that it belongs to
    palette,   // above other windows on every workspace, with the keyboard until the user turns away
    chatBar,   // the same, in the task bar where that can be
    card,      // above other windows, never with the keyboard
    toast,     // the same, at the top of the screen, and the pointer does not notice it
    menu,      // closes by a click elsewhere
    overlay    // covers a display with all that is on it, and takes pointer and keyboard
};

// Gives the window its flags and lets the desktop know each time it is shown. Before it is shown for the first time, or
// later for another role: where the two are different things to the desktop, the window is hidden by that, which is
// what it returns.
bool giveRole(QWidget& window, WindowRole role);

// Whether an ordinary window can be kept above those of other programs.
bool canStayOnTop();

// Brings a window that is shown to the front, with the keyboard.
void activate(QWindow& window);
// Takes the token with which the desktop lets a window come to the front that the user wants from another program: it
// counts for the window that is activated next.
void setActivationToken(std::string token);

// Whether the desktop takes windows that draw a shadow of their own around their frame.
bool knowsOwnShadows();

struct ShadowMargins {
    int shadow = 0;  // points on every side that belong to the shadow
    int grip = 0;    // points of them, beside the frame, that still take the pointer
};

// Tells the desktop of the shadow, and lets clicks on it go to what lies below. Call this again when the window's size
// has changed. Margins of 0 take it back.
void setShadowMargins(QWindow& window, const ShadowMargins& margins);

// What the window is filled with when it comes up, before the program has drawn anything. The window exists already and
// is not shown yet; where it is translucent, so is the colour.
void setFirstColor(QWindow& window, const QColor& color);

// Gives pointer and keyboard to a menu that is shown and belongs to no window, until it closes.
void holdInput(QWidget& menu);

// Has the desktop show its menu of the window at the pointer. False where it has none to show.
bool showWindowMenu(QWindow& window);

}  // namespace ovrin
