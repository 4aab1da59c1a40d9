// How a shortcut is written for the user.
#pragma once

#include <string>

#include "platform/keyboard_layout.h"
#include "platform/shortcut.h"

namespace ovrin::KeyboardShortcuts {

// The symbols of the modifiers in the order Control, Option, Shift, Command, Function, then the key: a special key by
// its symbol, any other by the upper-case character it types on the layout. "⇧⌘T"
std::string description(const Shortcut& shortcut, const KeyboardLayout& layout);

// F1 to F20: the keys that may be a shortcut without modifiers.
bool isFunctionKey(Key key);

}  // namespace ovrin::KeyboardShortcuts
