#include "fakes/kwin_test_compositor.h"

#include <cstdlib>
#include <fstream>

#include "base/error.h"
#include "fakes/wayland_test_compositor.h"

namespace ovrin {

bool KWinTestCompositor::mayBeSkipped() {
    return !std::filesystem::exists("/usr/bin/kwin_wayland") && !WaylandTestCompositor::isEveryTestDemanded();
}

// The installed file may have rights that a container does not let a program have: its copy has none. It starts a
// program once its socket is there, and ends with it.
ChildProcess::Setup KWinTestCompositor::setupIn(const std::filesystem::path& folder, const Session& session) {
    std::filesystem::copy_file("/usr/bin/kwin_wayland", folder / "kwin_wayland");
    const std::filesystem::path program = folder / "tell";
    std::ofstream(program) << "#!/bin/sh\necho ready\nexec sleep infinity\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    // Windows without frames are all of their program's.
    std::filesystem::create_directory(folder / "config");
    std::ofstream(folder / "config/kwinrc") << "[org.kde.kdecoration2]\nNoPlugin=true\n";
    // With a graphics processor, as it seems, it lets windows fade in and out as on users' desktops.
    std::ofstream(folder / ".drirc") << R"(<driconf><device><application name="KWin" executable="kwin_wayland">
        <option name="force_gl_renderer" value="a graphics processor"/></application></device></driconf>)";
    std::vector<std::string> environment{"PATH=/usr/bin:/bin", "HOME=" + folder.string(),
                                         "XDG_RUNTIME_DIR=" + folder.string(),
                                         "XDG_CONFIG_HOME=" + (folder / "config").string()};
    if (session.busAddress.empty()) {
        environment.insert(environment.end(), {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + (folder / "no-bus").string(),
                                               "KWIN_COMPOSE=Q", "KWIN_WAYLAND_NO_PERMISSION_CHECKS=1"});
    } else {
        environment.insert(environment.end(), {"DBUS_SESSION_BUS_ADDRESS=" + session.busAddress,
                                               "XDG_DATA_HOME=" + session.dataFolder.string(), "KWIN_COMPOSE=O2",
                                               "LIBGL_ALWAYS_SOFTWARE=1"});
    }
    return {.arguments = {(folder / "kwin_wayland").string(), "--virtual", "--width", std::to_string(session.width),
                          "--height", std::to_string(session.height), "--output-count", std::to_string(session.outputs),
                          "--scale", std::to_string(session.scale), "--socket", socketName, "--no-lockscreen",
                          "--no-global-shortcuts", program.string()},
            .environment = environment};
}

KWinTestCompositor::KWinTestCompositor(const Session& session) : setup_(setupIn(folder_.path(), session)) {
    restart();
}

void KWinTestCompositor::restart() {
    compositor_ = nullptr;
    compositor_ = std::make_unique<ChildProcess>(setup_);
    if (compositor_->readLine().empty()) throw Error("the compositor ended at once");
}

}  // namespace ovrin
