// The status item on a Linux desktop: over the session bus where a panel speaks org.kde.StatusNotifierItem, else as a
// window embedded into the panel (XEmbed). The menu is the program's own window where a click is heard of; most panels
// on the bus show a menu of their own with the same lines.
#pragma once

#include <QPoint>
#include <QPointer>
#include <memory>
#include <optional>

#include "base/published.h"
#include "platform/keyboard_layout.h"
#include "platform/linux/qt/dbus_menu.h"
#include "platform/linux/qt/status_notifier_item.h"
#include "platform/linux/qt/x11_tray.h"
#include "platform/status_item.h"
#include "views/components/view_environment.h"
#include "views/status_item/status_menu.h"

class QSystemTrayIcon;

namespace ovrin {

class QtStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    // All three outlive the object.
    QtStatusItem(ViewEnvironment& environment, const KeyboardLayout& layout, X11Tray& tray);
    ~QtStatusItem() override;

    const Published<Visibility>& visibility() const override { return visibility_; }
    const Published<LeftClick>& leftClick() const override { return leftClick_; }
    void setEvents(StatusItemEvents events) override { events_ = std::move(events); }
    void setAlpha(double alpha) override;
    void setToolTip(std::string text) override;
    void showMenu(Menu menu) override;

private:
    void chooseHost();
    void embed();
    void handleLeftClick(std::optional<QPoint> place);
    void handleRightClick(std::optional<QPoint> place);
    void openMenu(const Menu& menu);
    void hostMenuWillOpen();
    void hostMenuClosed(const std::function<void()>& action) const;

    // The colour of the icon follows the panel's.
    void updateTint();
    void drawIcon();

    ViewEnvironment& environment_;
    const KeyboardLayout& layout_;
    X11Tray& tray_;
    StatusItemEvents events_;
    Published<Visibility> visibility_;
    Published<LeftClick> leftClick_;

    DBusMenu hostMenu_;
    StatusNotifierItem notifierItem_;
    std::unique_ptr<QSystemTrayIcon> embedded_;

    theme::Appearance panel_ = theme::Appearance::dark;
    double alpha_ = 1;
    QString toolTip_;
    std::optional<QPoint> clickPlace_;  // pixels of the screen; none: where the pointer is
    QPointer<StatusMenu> menu_;         // owns itself
};

}  // namespace ovrin
