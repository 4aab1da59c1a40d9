#include "platform/linux/qt/window_system.h"

#include <QDir>
#include <QLibraryInfo>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/session_displays.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/x11/x11_connection.h"
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

void requireX11(bool isChosenByUser) {
    try {
        connectToX11(nullptr);
    } catch (const Error&) {
        if (isChosenByUser || !hasWaylandDisplay(Environment::ofProcess())) throw;
        const WaylandConnection compositor;  // or it says that it does not answer
        if (isCompositorAble()) throw Error("缺少 Qt 的 Wayland 支持，也没有 XWayland：请安装软件包 qt6-wayland。");
        throw Error("此桌面（Wayland）不支持浮动窗口（layer-shell），也没有 XWayland：请安装软件包 xwayland。");
    }
}

}  // namespace

bool hasNativeWindows() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    return chosen.isEmpty() ? isToolkitAble() && isCompositorAble() : chosen.startsWith("wayland");
}

void chooseWindowSystem() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    const bool isWayland = hasNativeWindows();
    if (!isWayland) requireX11(!chosen.isEmpty());
    if (chosen.isEmpty()) qputenv("QT_QPA_PLATFORM", isWayland ? "wayland" : "xcb");
    if (!isWayland) return;
    if (isCompositorAble()) {
        // Windows that bypass the window manager get no role from the toolkit: it is given to them in LayerWindow.
        qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
        // They are where the program puts them, and menus and tool tips of theirs find their place by that.
        qputenv("QT_WAYLAND_DISABLE_FIXED_POSITIONS", "1");
    }
}

}  // namespace ovrin
