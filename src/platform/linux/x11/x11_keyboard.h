// What the X server's keyboard looks like at one moment: which X key codes lie at which places, which modifier bits
// mean what, and which characters the keys type. A snapshot; take a new one when the server tells of a change.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <xcb/xcb.h>

#include "platform/linux/desktop/xkb_keys.h"
#include "platform/shortcut.h"

namespace ovrin {

class X11Keyboard {
public:
    // Asks the server over a connection that followX11Keyboard() was called for; none when it does not answer.
    static std::optional<X11Keyboard> read(xcb_connection_t* connection);

    // Where the key lies; empty when this keyboard lacks it. More than one only for a key that PC keyboards have in
    // place of another.
    std::vector<xcb_keycode_t> keyCodes(KeyboardShortcuts::Key key) const;

    // Codes and characters, whatever the server's modifiers are.
    const XkbKeys& keys() const { return keys_; }

    // The bits of the modifiers in key events; none when the keyboard lacks one of them.
    std::optional<std::uint16_t> modifierMask(KeyboardShortcuts::Modifiers modifiers) const;

    // Caps Lock, Num Lock and Scroll Lock: bits that must not matter.
    std::uint16_t lockMask() const { return lockMask_; }

    // Whether grabs made for one keyboard serve the other.
    bool hasSameGrabsAs(const X11Keyboard& other) const;

private:
    explicit X11Keyboard(XkbKeys keys) : keys_(std::move(keys)) {}
    void readModifiers(const xcb_get_modifier_mapping_reply_t& mapping);
    bool types(xcb_keycode_t keyCode, std::uint32_t keysym) const;

    XkbKeys keys_;
    std::uint16_t commandMask_ = 0;
    std::uint16_t optionMask_ = 0;
    std::uint16_t lockMask_ = 0;
};

// Has the server tell this client of changes of the keyboard. Gives the response type of the events that do. Throws
// Error when the server knows no XKB.
std::uint8_t followX11Keyboard(xcb_connection_t* connection);

// The keyboard, or an Error that says there is none.
X11Keyboard readX11KeyboardOrThrow(xcb_connection_t* connection);

}  // namespace ovrin
