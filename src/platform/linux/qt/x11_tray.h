// The panels of an X11 desktop, as far as the status item has to do with them: whether one embeds windows as icons
// (XEmbed), and whether they are light or dark. In other sessions there are none. Main thread.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <optional>

#include "platform/linux/x11/x11_selection_owners.h"
#include "theme/color_token.h"

namespace ovrin {

class X11Screenshot;

class X11Tray final : public QObject {
    Q_OBJECT

public:
    // The screenshot outlives the object.
    explicit X11Tray(X11Screenshot& screenshot);

    bool embedsIcons() const;

    // How the panel looks; none where no panel can be looked at.
    std::optional<theme::Appearance> appearance() const;

signals:
    // Whether icons are embedded may be otherwise now.
    void changed();

private:
    X11Screenshot& screenshot_;
    std::optional<X11SelectionOwners> owners_;
    std::optional<QSocketNotifier> ownersChanged_;
};

}  // namespace ovrin
