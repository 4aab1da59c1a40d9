// The menu of the status item: a menu in the program's look, made of plain values. Lives until it is closed, then
// destroys itself.
#pragma once

#include <QPoint>
#include <functional>
#include <optional>

#include "platform/keyboard_layout.h"
#include "platform/menu.h"
#include "views/components/ov_menu.h"

class QKeyEvent;

namespace ovrin {

class StatusMenu final : public OVMenu {
    Q_OBJECT

public:
    using Action = std::function<void()>;

    // layout: tells which key of the keyboard a key event is about; outlives the menu.
    StatusMenu(ViewEnvironment& environment, const KeyboardLayout& layout, const Menu& items);

    // Opens it beside the pointer, within what panels leave free of the screen.
    void popUp(const QPoint& pointer);

signals:
    // Once, from the event loop, with the menu off the screen. action: of the item that was chosen; empty when none
    // was.
    void closed(const std::function<void()>& action);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fill(OVMenu& menu, const Menu& items);
    void addItem(OVMenu& menu, const MenuItem& item);
    bool chooseByKeys(const QKeyEvent& event);

    struct KeyedItem {
        std::optional<KeyboardShortcuts::Shortcut> shortcut;
        std::optional<char> controlKey;
        Action action;
    };

    const KeyboardLayout& layout_;
    std::vector<KeyedItem> keyedItems_;
    Action chosen_;
};

}  // namespace ovrin
