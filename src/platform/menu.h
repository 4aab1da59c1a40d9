// Menus as plain values, for whoever shows them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/shortcut.h"
#include "theme/ov_icon.h"

namespace ovrin {

// One line of a menu.
struct MenuItem {
    std::string title;  // UTF-8; empty: a separator
    std::optional<OVIcon> icon{};
    std::string keyEquivalent{};  // how the keys that choose the item are written: "Super+Shift+T"; or empty

    // The keys themselves, which choose the item while the menu is open.
    std::optional<KeyboardShortcuts::Shortcut> shortcut{};  // places on the keyboard
    std::optional<char> controlKey{};                       // the key that types this character, with Control held

    bool isEnabled = true;
    std::function<void()> action{};   // once the menu is closed
    std::vector<MenuItem> submenu{};  // not empty: the item opens it and has no action

    static MenuItem separator() { return {}; }
    bool isSeparator() const { return title.empty(); }
};
using Menu = std::vector<MenuItem>;

}  // namespace ovrin
