// What the X server's keyboard looks like at one moment: which X key codes lie at which places, which modifier bits
// mean what, and which characters the keys type. A snapshot; take a new one when the server tells of a change.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <xcb/xcb.h>

#include "platform/shortcut.h"

struct xkb_keymap;

namespace ovrin {

class X11Keyboard {
public:
    // Asks the server over a connection that followX11Keyboard() was called for; none when it does not answer.
    static std::optional<X11Keyboard> read(xcb_connection_t* connection);

    // Where the key lies; empty when this keyboard lacks it. More than one only for a key that PC keyboards have in
    // place of another.
    std::vector<xcb_keycode_t> keyCodes(KeyboardShortcuts::Key key) const;
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t keyCode) const;

    // The bits of the modifiers in key events; none when the keyboard lacks one of them.
    std::optional<std::uint16_t> modifierMask(KeyboardShortcuts::Modifiers modifiers) const;

    // Caps Lock, Num Lock and Scroll Lock: bits that must not matter.
    std::uint16_t lockMask() const { return lockMask_; }

    // The character that the key types without modifiers in the layout group of the number; none when it types none.
    std::optional<std::string> character(KeyboardShortcuts::Key key, std::uint32_t group) const;

    // Whether grabs made for one keyboard serve the other.
    bool hasSameGrabsAs(const X11Keyboard& other) const;

private:
    explicit X11Keyboard(std::shared_ptr<xkb_keymap> keymap);
    void readModifiers(const xcb_get_modifier_mapping_reply_t& mapping);
    bool types(xcb_keycode_t keyCode, std::uint32_t keysym) const;

    std::shared_ptr<xkb_keymap> keymap_;
    std::vector<std::pair<KeyboardShortcuts::Key, xcb_keycode_t>> places_;
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
