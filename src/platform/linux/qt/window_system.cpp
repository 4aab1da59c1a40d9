#include "platform/linux/qt/window_system.h"

#include <QDir>
#include <QLibraryInfo>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/session_displays.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "wlr-layer-shell-unstable-v1-client.h"

namespace ovrin {

namespace {

// The toolkit's part for Wayland is a package of its own.
bool isToolkitAble() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
    return !plugins.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
}

bool isCompositorAble() {
    if (!hasWaylandDisplay(Environment::ofProcess())) return false;
    try {
        const WaylandConnection connection;
        return connection.versionOf(zwlr_layer_shell_v1_interface) > 0 && WaylandDataDevice::isOfferedBy(connection);
    } catch (const Error&) {
        return false;
    }
}

}  // namespace

WindowSystem chooseWindowSystem() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    const bool isWayland = chosen.isEmpty() ? isToolkitAble() && isCompositorAble() : chosen.startsWith("wayland");
    if (chosen.isEmpty()) qputenv("QT_QPA_PLATFORM", isWayland ? "wayland" : "xcb");
    if (!isWayland) return WindowSystem::x11;
    if (isCompositorAble()) {
        // Windows that bypass the window manager get no role from the toolkit: it is given to them in LayerWindow.
        qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
        // They are where the program puts them, and menus and tool tips of theirs find their place by that.
        qputenv("QT_WAYLAND_DISABLE_FIXED_POSITIONS", "1");
    }
    return WindowSystem::wayland;
}

}  // namespace ovrin
