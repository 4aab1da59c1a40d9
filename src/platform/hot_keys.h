// Seam: key combinations that work while any program has the keyboard.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/shortcut.h"

namespace ovrin {

struct HotKey {
    // Stays the same for ever: desktops remember by it what their user has decided.
    std::string name;
    // What the desktop may show for it.
    std::string title;
    // What does the same: "ovrin do", and this. Some desktops start programs only.
    std::string command;
    KeyboardShortcuts::Shortcut shortcut;

    friend bool operator==(const HotKey&, const HotKey&) = default;
};

// What happens to hot keys, by their names. Called on the main loop; described and failed also from within
// setHotKeys(), all others never from within a call of HotKeys.
struct HotKeyEvents {
    // One call for one press, however long the keys are held.
    std::function<void(const std::string& name)> keyDown;
    std::function<void(const std::string& name)> keyUp;
    // The hot key is in force. keys: with which keys, in the desktop's own words, where its user has the last word;
    // empty where it is the combination that was asked for.
    std::function<void(const std::string& name, const std::string& keys)> described;
    // The hot key is not in force, or no longer: another program holds the combination, the keyboard lacks the key or a
    // modifier, the user or the desktop says no, the display went away. The reason is a sentence for the user.
    std::function<void(const std::string& name, const std::string& reason)> failed;
    // The keyboard is another one now: what failed before may be possible.
    std::function<void()> keyboardChanged;
};

// Main thread.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    // Why the session has no hot keys for the program, as a sentence for the user; none where it has. Without them
    // every combination fails, whichever it is.
    virtual std::optional<std::string> problem() const { return std::nullopt; }

    // Who hears of the events from now on, in place of who did before.
    virtual void setEvents(HotKeyEvents events) = 0;

    // The hot keys from now on, all in one go; each combination and each name occurs once. Those that are in force stay
    // so; each other one is described or fails, at once or, where the desktop asks its user, later. What is no longer
    // among them is given back to other programs at once, and no event of it is delivered afterwards.
    virtual void setHotKeys(const std::vector<HotKey>& hotKeys) = 0;

    // Between the two no combination fires and other programs get the keys, while all of them stay registered; what is
    // set meanwhile waits too. Saying either twice changes nothing. A combination that others took in the meantime
    // fails.
    virtual void suspend() = 0;
    virtual void resume() = 0;

    // Whether the desktop accepts combinations whose only modifiers are Option, or Option and Shift.
    virtual bool allowsOptionAlone() const = 0;
};

}  // namespace ovrin
