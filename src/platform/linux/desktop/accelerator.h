// Key combinations as desktops write them in their settings.
#pragma once

#include <optional>
#include <string_view>

#include "platform/keyboard_layout.h"
#include "platform/shortcut.h"

namespace ovrin {

// "<Super><Shift>s", "<Primary>Escape", "XF86AudioPlay". Characters are looked for on the layout, key by key: for many
// combinations, give a snapshot. None for what is disabled, malformed, or has no key in the storage format.
std::optional<KeyboardShortcuts::Shortcut> parseAngledAccelerator(std::string_view text, const KeyboardLayout& layout);

// "Meta+Shift+S", "Ctrl+Alt+Esc", "Meta++".
std::optional<KeyboardShortcuts::Shortcut> parsePlusAccelerator(std::string_view text, const KeyboardLayout& layout);

}  // namespace ovrin
