// Shortcuts in words, as they are written for the user and read to them.
#pragma once

#include <string>
#include <string_view>

#include "platform/keyboard_layout.h"
#include "platform/shortcut.h"

namespace ovrin::KeyboardShortcuts {

// The names that this desktop's keyboards have for the modifiers, in the order Super, Ctrl, Alt, Shift, Fn, then the
// key: a special key by its name, any other by the upper-case character it types on the layout. "Super+Shift+T"
std::string description(const Shortcut& shortcut, const KeyboardLayout& layout);

// The same for a key that is known by what it is called: "Ctrl+Q".
std::string description(Modifiers modifiers, std::string_view key);

// F1 to F20: the keys that may be a shortcut without modifiers.
bool isFunctionKey(Key key);

}  // namespace ovrin::KeyboardShortcuts
