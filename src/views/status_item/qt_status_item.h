// The status item on a Linux desktop: over the session bus where a panel speaks org.kde.StatusNotifierItem, else as a
// window embedded into the panel (XEmbed). The menu is the program's own window in either case.
#pragma once

#include <QPointer>
#include <QSocketNotifier>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/published.h"
#include "platform/keyboard_layout.h"
#include "platform/linux/qt/status_notifier_item.h"
#include "platform/linux/x11_screenshot.h"
#include "platform/linux/x11_selection_owners.h"
#include "platform/status_item.h"
#include "views/components/view_environment.h"
#include "views/status_item/status_menu.h"

class QSystemTrayIcon;

namespace ovrin {

class QtStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    enum class Visibility : std::uint8_t {
        unknown,  // the desktop has not answered yet
        shown,
        nowhere  // the desktop has no status area (yet)
    };

    // All three outlive the object.
    QtStatusItem(ViewEnvironment& environment, const KeyboardLayout& layout, X11Screenshot& screenshot);
    ~QtStatusItem() override;

    // Follows panels that come and go.
    const Published<Visibility>& visibility() const { return visibility_; }

    void setEvents(StatusItemEvents events) override { events_ = std::move(events); }
    void setAlpha(double alpha) override;
    void setToolTip(std::string text) override;
    void showMenu(Menu menu) override;

private:
    void followEmbeddingPanels();
    void chooseHost();
    void embed();
    void handleLeftClick();
    void handleRightClick();
    void openMenu(const Menu& menu);

    // The colour of the icon follows the panel's.
    void updateTint();
    void drawIcon();

    ViewEnvironment& environment_;
    const KeyboardLayout& layout_;
    X11Screenshot& screenshot_;
    StatusItemEvents events_;
    Published<Visibility> visibility_;

    StatusNotifierItem notifierItem_;
    std::optional<X11SelectionOwners> embeddingPanels_;
    std::optional<QSocketNotifier> embeddingPanelsChanged_;
    std::unique_ptr<QSystemTrayIcon> embedded_;

    theme::Appearance panel_ = theme::Appearance::dark;
    double alpha_ = 1;
    QString toolTip_;
    QPointer<StatusMenu> menu_;  // owns itself
};

}  // namespace ovrin
