// Seam: the program's icon in the desktop's status area, and the menu that drops from it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/shortcut.h"
#include "theme/ov_icon.h"

namespace ovrin {

// One line of a menu, as plain values.
struct MenuItem {
    std::string title;  // UTF-8; empty: a separator
    std::optional<OVIcon> icon{};
    std::string keyEquivalent{};  // how the keys that choose the item are written: "⇧⌘T"; empty when there are none

    // The keys themselves, which choose the item while the menu is open.
    std::optional<KeyboardShortcuts::Shortcut> shortcut{};  // places on the keyboard
    std::optional<char> controlKey{};                       // the key that types this character, with Control held

    bool isEnabled = true;
    std::function<void()> action{};   // on the main loop, once the menu is closed
    std::vector<MenuItem> submenu{};  // not empty: the item opens it and has no action

    static MenuItem separator() { return {}; }
    bool isSeparator() const { return title.empty(); }
};
using Menu = std::vector<MenuItem>;

// What happens to the item. Called on the main loop, never from within a call of StatusItem.
struct StatusItemEvents {
    std::function<void()> leftClicked;
    std::function<void()> rightClicked;
    std::function<void()> menuWillOpen;
    std::function<void()> menuDidClose;  // before the action of the chosen item, if any
};

// Main thread. On a desktop without a status area everything is accepted and nothing shows.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    // Who hears of the events from now on, in place of who did before.
    virtual void setEvents(StatusItemEvents events) = 0;

    // 0..1: the opacity of the icon.
    virtual void setAlpha(double alpha) = 0;

    // UTF-8, one line.
    virtual void setToolTip(std::string text) = 0;

    // Opens the menu at the icon, in place of one that is open. It stays until the user chooses or goes elsewhere.
    virtual void showMenu(Menu menu) = 0;
};

}  // namespace ovrin
