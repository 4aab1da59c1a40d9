// Presses Control+C and Control+V in the program in front, through the server's XTEST extension. In terminals, where
// Control+C interrupts what runs and nothing that is selected can be replaced, it presses nothing.
//
// Keys that the user still holds from a shortcut would turn them into other combinations, and a key that holds a grab
// would keep them for its owner: all of them are released first. They are not pressed again: a key whose release came
// in between would be stuck.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/linux/x11/x11_connection.h"
#include "platform/shortcut.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class X11SimulateKeyboard final : public SimulateKeyboard {
public:
    // Whose keys the server has: in a Wayland session those of X11 programs alone. While another program has the
    // keyboard there, no window of the server's has it.
    enum class Reach : std::uint8_t { everyProgram, x11Programs };

    // display: such as ":0"; null for the one the environment names. Throws Error when no server answers there.
    explicit X11SimulateKeyboard(const char* display, Reach reach = Reach::everyProgram);

    // Whether the server lets programs press keys, and has those of the program in front. It can't be asked to.
    bool isTrusted() override;
    Task<bool> requestTrust() override { co_return isTrusted(); }

    // The window with the keyboard is, or is in, one that the window manager manages and that is not of this process.
    bool reachesOtherProgram() override;

    Window frontWindow() override;

    // What a terminal has selected is the PRIMARY selection, if it owns that. Where no keys reach the program in front,
    // PRIMARY counts whoever owns it.
    Selection selection() override;

    // Return when the server has delivered the keys; do nothing when it can't.
    void copy() override;
    void paste() override;

private:
    void pressWithControl(const char* letter, KeyboardShortcuts::Key place);
    std::vector<xcb_keycode_t> heldKeys();
    xcb_window_t focusedWindow();
    bool isOutOfReach(xcb_window_t focused) const;
    void fake(std::uint8_t event, xcb_keycode_t keyCode);

    X11Connection connection_;
    Reach reach_;
};

}  // namespace ovrin
