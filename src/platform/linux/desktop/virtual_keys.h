// The table between the key codes of the storage format, the names that X keyboards give to the same places, and the
// keysyms of the keys that type no character.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include <xkbcommon/xkbcommon.h>

#include "platform/shortcut.h"

namespace ovrin {

struct VirtualKey {
    KeyboardShortcuts::Key key;
    // Of the place on the keyboard. The second is the one that PC keyboards have where the first is missing.
    std::array<std::string_view, 2> xkbNames;
    xkb_keysym_t specialKeysym = XKB_KEY_NoSymbol;  // none for keys that type a character
};

std::span<const VirtualKey> virtualKeys();

std::optional<KeyboardShortcuts::Key> keyOfSpecialKeysym(xkb_keysym_t keysym);

}  // namespace ovrin
