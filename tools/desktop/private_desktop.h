// A whole desktop of one's own on a machine without a display: an X server, a session bus, a window manager and, on
// demand, a compositor, a tray and a notification daemon, all in an empty home. It ends with its scope, and also when
// its process crashes. The user's own desktop, home and bus are never touched.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/bus_view.h"
#include "desktop/pixel_area.h"
#include "desktop/x11_view.h"
#include "fakes/child_process.h"
#include "fakes/private_bus.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class PrivateDesktop {
public:
    struct Monitor {
        std::string name;
        PixelArea area;
    };
    enum class Compositor : std::uint8_t { none, picom };
    enum class Tray : std::uint8_t {
        none,
        tint2,     // icons embedded by the XEmbed protocol
        lxqtPanel  // icons as status notifier items
    };
    enum class Accessibility : std::uint8_t { off, on };  // on: a screen reader can read the windows
    enum class WindowManager : std::uint8_t { none, openbox };

    struct Setup {
        int width = 1920;
        int height = 1080;
        std::vector<Monitor> monitors{};  // empty: one as large as the screen
        WindowManager windowManager = WindowManager::openbox;
        Compositor compositor = Compositor::picom;
        Tray tray = Tray::tint2;
        Accessibility accessibility = Accessibility::off;
    };

    // What has to be installed for it and is not, as names of Debian packages.
    static std::vector<std::string> missingPackages(const Setup& setup);

    // Returns once everything in it answers. Throws Error with what is missing or did not come up.
    explicit PrivateDesktop(const Setup& setup);
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;
    ~PrivateDesktop();

    const std::string& display() const { return display_; }  // such as ":5"
    const BusView& bus() const { return *busView_; }
    const std::string& busAddress() const { return bus_->address(); }
    // Programs that the bus starts when somebody asks for them (D-Bus service files); nothing is in it.
    const std::filesystem::path& servicesFolder() const { return bus_->servicesFolder(); }

    const std::filesystem::path& home() const { return home_.path(); }
    std::filesystem::path configurationFolder() const { return home() / "config"; }
    std::filesystem::path dataFolder() const { return home() / "data"; }

    // The whole environment of the programs that run on it.
    std::vector<std::string> environment() const;

    // Starts a program on the desktop. Its standard error, and its output where it is not read, go to logOf() it.
    struct Program {
        std::vector<std::string> arguments;      // the program first
        std::vector<std::string> environment{};  // in place of the desktop's, or beside them
        std::string inputText{};                 // what it reads from standard input first
        ChildProcess::Input input = ChildProcess::Input::ends;
        ChildProcess::Output output = ChildProcess::Output::log;
    };
    std::unique_ptr<ChildProcess> start(const Program& program) const;
    std::filesystem::path logOf(const std::string& program) const;

    // Plugs monitors in and out while programs run. The first is the primary one.
    void setMonitors(const std::vector<Monitor>& monitors);

    // Kill a part of it as a crash would.
    void killCompositor() { compositor_.reset(); }
    void killServer() { server_.reset(); }
    // Of tint2.
    void restartTray();

private:
    void startServer(const Setup& setup);
    void xrandr(const std::vector<std::string>& arguments) const;
    void startWindowManager();
    void startCompositor();
    void startTint2();
    void startLxqtPanel();
    void startAccessibility();
    void paintBackground();
    void waitForSelection(const std::string& selection, const std::string& program) const;

    TemporaryDirectory home_;
    std::unique_ptr<PrivateBus> bus_;
    std::unique_ptr<BusView> busView_;
    std::string display_;
    bool isAccessible_ = false;
    std::vector<std::string> monitorNames_;
    // They end in the reverse order.
    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<X11View> view_;
    std::unique_ptr<ChildProcess> windowManager_;
    std::unique_ptr<ChildProcess> compositor_;
    std::unique_ptr<ChildProcess> accessibility_;
    std::unique_ptr<ChildProcess> tray_;
};

}  // namespace ovrin
