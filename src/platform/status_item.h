// Seam: the program's icon in the desktop's status area, and the menu that drops from it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/published.h"
#include "platform/menu.h"

namespace ovrin {

// What happens to the item. Called on the main loop, never from within a call of StatusItem.
struct StatusItemEvents {
    std::function<void()> leftClicked;
    std::function<void()> rightClicked;
    std::function<void()> menuWillOpen;
    // The desktop shows the menu by itself, so that no click is heard of. It may have asked for nothing but the menu's
    // lines, may tell that the menu opened before it asks or not at all, and may fail to tell of the end.
    std::function<void()> hostMenuWillOpen;
    std::function<void()> hostMenuDidOpen;
    std::function<void()> menuDidClose;  // of either; before the action of the chosen item, if any
    std::function<Menu()> makeMenu;      // what a desktop is to show by itself: as it is at this moment
};

// Main thread. On a desktop without a status area everything is accepted and nothing shows.
class StatusItem {
public:
    enum class Visibility : std::uint8_t {
        unknown,  // the desktop has not answered yet
        shown,
        nowhere  // the desktop has no status area (yet)
    };
    enum class LeftClick : std::uint8_t { isHeard, opensHostMenu };

    virtual ~StatusItem() = default;

    // Both follow status areas that come and go.
    virtual const Published<Visibility>& visibility() const = 0;
    virtual const Published<LeftClick>& leftClick() const = 0;

    // Who hears of the events from now on, in place of who did before.
    virtual void setEvents(StatusItemEvents events) = 0;

    // 0..1: the opacity of the icon.
    virtual void setAlpha(double alpha) = 0;

    // UTF-8, one line.
    virtual void setToolTip(std::string text) = 0;

    // Opens the menu where the item was clicked on last, in place of one that is open. It stays until the user chooses
    // or goes elsewhere.
    virtual void showMenu(Menu menu) = 0;
};

}  // namespace ovrin
