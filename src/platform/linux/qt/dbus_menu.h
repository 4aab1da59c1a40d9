// The program's menu for panels that show it by themselves: exported over the session bus as com.canonical.dbusmenu.
// Nothing here waits for another program. A panel that asks and goes away leaves nothing behind.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "platform/menu.h"

namespace ovrin {

// Main thread.
class DBusMenu final : public QObject {
    Q_OBJECT

public:
    // Where the object is on the connection of the process.
    static const QString path;

    struct Source {
        std::function<Menu()> makeMenu;         // the menu as it is at this moment
        std::function<QByteArray(OVIcon)> png;  // the picture of an icon as the bytes of a PNG file
    };

    explicit DBusMenu(Source source);
    ~DBusMenu() override;

    // From now on panels can ask for the menu.
    void start();

signals:
    // A panel is about to show the menu; the menu is made anew right after.
    void aboutToShow();
    // The panel has opened it; some tell so before they ask for it, some never.
    void opened();
    // The panel's menu was closed, one of its lines was chosen, or the panel went away. From the event loop. action: of
    // the line that was chosen; empty when none was.
    void closed(const std::function<void()>& action);

private:
    class BusObject;
    std::unique_ptr<BusObject> object_;  // null without a session bus
};

}  // namespace ovrin
