// Seam: presses the keys of copy and paste in whatever program is in front.
#pragma once

#include <cstdint>

#include "base/task.h"

namespace ovrin {

// Main thread. Nothing here throws.
class SimulateKeyboard {
public:
    virtual ~SimulateKeyboard() = default;

    // Whether this process may press keys in other programs.
    virtual bool isTrusted() = 0;

    // Asks the user to let this process press keys, where the desktop has a way to; gives the trust as it is then.
    virtual Task<bool> requestTrust() = 0;

    // Whether the keys would reach another program now. They would not while one of this program's windows has the
    // keyboard, or is giving it back.
    virtual bool reachesOtherProgram() = 0;

    // The window that the keys would reach now, of whatever program; nowhere when there is none or the desktop does not
    // tell.
    enum class Window : std::uint64_t { nowhere = 0 };
    virtual Window frontWindow() = 0;

    // How the text that is selected in that program can be had. Where the keys do not copy it, pasting does not
    // replace it.
    enum class Selection : std::uint8_t {
        copied,  // with the keys of copy; so in programs that are not known
        either,  // with the keys, or from the desktop: something was selected since the window got the keyboard
        shown,   // from the desktop alone: the keys would do something else (a terminal: interrupt), or there are none
        absent   // not at all: neither would the keys copy, nor is anything selected
    };
    virtual Selection selection() = 0;

    // Press the combination that the program takes for copy and paste. Do nothing when the keys cannot be pressed, or
    // would do something else; what the program makes of them shows on the clipboard, later.
    virtual void copy() = 0;
    virtual void paste() = 0;

    // Ends either, after some time in which a key goes through an input method: where that hands keys on by itself, the
    // program takes them with the modifiers that are held by then.
    virtual void letGo() {}
};

}  // namespace ovrin
