// Seam: presses the keys of copy and paste in whatever program is in front.
#pragma once

namespace ovrin {

// Main thread. Nothing here throws.
class SimulateKeyboard {
public:
    virtual ~SimulateKeyboard() = default;

    // Whether this process may press keys in other programs.
    virtual bool isTrusted() = 0;

    // Asks the user for it, where the desktop has a way to; the trust as it is now.
    virtual bool requestTrust() = 0;

    // Whether the keys would reach another program now. They would not while one of this program's windows has the
    // keyboard, or is giving it back.
    virtual bool reachesOtherProgram() = 0;

    // Press and release the platform's combination. Do nothing when the keys cannot be pressed; what the program makes
    // of them shows on the clipboard, later.
    virtual void copy() = 0;
    virtual void paste() = 0;
};

}  // namespace ovrin
