// Seam: what the keys of the keyboard produce on the layout that the user types with at the moment.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/shortcut.h"

namespace ovrin {

// Main thread.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;

    // The character (UTF-8) that the key types without modifiers; none when it types none.
    virtual std::optional<std::string> character(KeyboardShortcuts::Key key) const = 0;

    // The key of a key event: its code in the window system's own numbering (the native scan code of the toolkit's
    // event). None for modifier keys and keys that the storage format has no number for.
    virtual std::optional<KeyboardShortcuts::Key> key(std::uint32_t nativeCode) const = 0;

    // The layout as it is at this moment, for questions about many keys: who has to ask the window system for the
    // answers asks it once.
    virtual std::unique_ptr<const KeyboardLayout> snapshot() const = 0;
};

}  // namespace ovrin
