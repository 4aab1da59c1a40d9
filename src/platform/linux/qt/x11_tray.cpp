#include "platform/linux/qt/x11_tray.h"

#include <QGuiApplication>
#include <string>
#include <vector>

#include "base/error.h"
#include "platform/linux/x11/x11_panels.h"

namespace ovrin {

namespace {

xcb_connection_t* toolkitConnection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

}  // namespace

X11Tray::X11Tray(X11Screenshot& screenshot) : screenshot_(screenshot) {
    if (toolkitConnection() == nullptr) return;
    try {
        owners_.emplace(nullptr, std::vector<std::string>{X11SelectionOwners::statusArea});
    } catch (const Error&) {
        return;  // the server has gone
    }
    ownersChanged_.emplace(owners_->descriptor(), QSocketNotifier::Read);
    connect(&*ownersChanged_, &QSocketNotifier::activated, this, [this] {
        if (!owners_->process()) ownersChanged_->setEnabled(false);
        emit changed();
    });
}

bool X11Tray::embedsIcons() const {
    return owners_ && owners_->hasOwner(X11SelectionOwners::statusArea);
}

std::optional<theme::Appearance> X11Tray::appearance() const {
    xcb_connection_t* const connection = toolkitConnection();
    return connection == nullptr ? std::nullopt : panelAppearance(connection, screenshot_);
}

}  // namespace ovrin
