// Seam: key combinations that work while any program has the keyboard.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/shortcut.h"

namespace ovrin {

// Chosen by the caller, unique among its registered hot keys.
enum class HotKeyId : std::uint32_t {};

// What happens to hot keys. Called on the main loop, never from within a call of HotKeys.
struct HotKeyEvents {
    // One call for one press, however long the keys are held.
    std::function<void(HotKeyId)> keyDown;
    std::function<void(HotKeyId)> keyUp;
    // The desktop has given what its answer was pending for.
    std::function<void(HotKeyId)> granted{};
    // The hot key has stopped to work (its place on a changed keyboard is taken, the display went away) or a pending
    // answer was no, and it is no longer registered; the reason is a sentence for the user.
    std::function<void(HotKeyId, const std::string& reason)> failed;
    // The keyboard is another one now: what could not be registered before may be possible.
    std::function<void()> keyboardChanged;
};

enum class HotKeyAnswer : std::uint8_t {
    granted,
    pending,  // the desktop asks its user first: granted() or failed() is called later
};

// Main thread.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    // Who hears of the events from now on, in place of who did before.
    virtual void setEvents(HotKeyEvents events) = 0;

    // Throws Error whose description tells why this combination can't be had: another program holds it, the keyboard
    // lacks the key or a modifier, there is no display. A combination is registered at most once at a time.
    virtual HotKeyAnswer registerHotKey(HotKeyId id, const KeyboardShortcuts::Shortcut& shortcut) = 0;

    // Gives the combination back to other programs at once; unknown identifiers are ignored. No event of it is
    // delivered afterwards.
    virtual void unregisterHotKey(HotKeyId id) = 0;

    // Between the two no combination fires and other programs get the keys, while all of them stay registered; what is
    // registered meanwhile waits too. Saying either twice changes nothing. A combination that others took in the
    // meantime fails.
    virtual void suspend() = 0;
    virtual void resume() = 0;

    // Whether the desktop accepts combinations whose only modifiers are Option, or Option and Shift.
    virtual bool allowsOptionAlone() const = 0;
};

}  // namespace ovrin
