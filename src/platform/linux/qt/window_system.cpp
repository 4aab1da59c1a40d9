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

std::unique_ptr<WaylandConnection> connectToCompositor() {
    if (!hasWaylandDisplay(Environment::ofProcess())) return nullptr;
    try {
        return std::make_unique<WaylandConnection>();
    } catch (const Error&) {
        return nullptr;
    }
}

bool isAble(const WaylandConnection* compositor) {
    return compositor != nullptr && compositor->versionOf(zwlr_layer_shell_v1_interface) > 0 &&
           WaylandDataDevice::isOfferedBy(*compositor);
}

void requireX11(bool isChosenByUser) {
    try {
        connectToX11(nullptr);
    } catch (const Error&) {
        if (isChosenByUser || !hasWaylandDisplay(Environment::ofProcess())) throw;
        const WaylandConnection compositor;  // or it says that it does not answer
        if (isAble(&compositor)) throw Error("缺少 Qt 的 Wayland 支持，也没有 XWayland：请安装软件包 qt6-wayland。");
        throw Error(
            "此桌面（Wayland）没有同时提供 layer-shell 和 data-control，也没有 XWayland：请安装软件包 xwayland。");
    }
}

QStringList& variablesSet() {
    static QStringList names;
    return names;
}

void setUnlessChosen(const char* name, const char* value) {
    if (!qEnvironmentVariableIsEmpty(name)) return;
    qputenv(name, value);
    variablesSet().append(QString::fromLatin1(name));
}

}  // namespace

bool hasNativeWindows() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    return chosen.isEmpty() ? isToolkitAble() && isAble(connectToCompositor().get()) : chosen.startsWith("wayland");
}

std::unique_ptr<WaylandConnection> chooseWindowSystem() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    std::unique_ptr<WaylandConnection> compositor = connectToCompositor();
    const bool isWayland =
        chosen.isEmpty() ? isToolkitAble() && isAble(compositor.get()) : chosen.startsWith("wayland");
    if (!isWayland) requireX11(!chosen.isEmpty());
    setUnlessChosen("QT_QPA_PLATFORM", isWayland ? "wayland" : "xcb");
    if (!isWayland) return compositor;
    // Every window has a frame of its own or none. To find out whether it could draw another one, the toolkit would
    // start OpenGL, which takes 20 ms of the first window's coming up where there is no graphics processor.
    setUnlessChosen("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
    if (isAble(compositor.get())) {
        // Windows that bypass the window manager get no role from the toolkit: it is given to them in LayerWindow.
        setUnlessChosen("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
        // They are where the program puts them, and menus and tool tips of theirs find their place by that.
        setUnlessChosen("QT_WAYLAND_DISABLE_FIXED_POSITIONS", "1");
    }
    return compositor;
}

const QStringList& ownToolkitVariables() {
    return variablesSet();
}

}  // namespace ovrin
