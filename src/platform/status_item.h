// Seam: the program's icon in the desktop's status area, and the menu that drops from it.
#pragma once

#include <functional>
#include <string>

#include "platform/menu.h"

namespace ovrin {

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
