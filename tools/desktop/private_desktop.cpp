#include "desktop/private_desktop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

#include <unistd.h>

#include "base/error.h"
#include "desktop/wait.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* accessibilityLauncher = "/usr/libexec/at-spi-bus-launcher";
constexpr const char* traySelection = "_NET_SYSTEM_TRAY_S0";
constexpr std::uint32_t backgroundColor = 0x5b6b78;

// Programs get the focus when they open a window or are clicked; no key and no menu belongs to the window manager.
constexpr std::string_view openboxConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <keyboard/>
  <mouse>
    <dragThreshold>1</dragThreshold>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
    <context name="Titlebar">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
      <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
    </context>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

constexpr std::string_view tint2Configuration = R"(panel_items = TS
panel_monitor = 1
panel_position = bottom center horizontal
panel_size = 100% 32
panel_padding = 6 2 6
systray_padding = 4 2 6
systray_icon_size = 22
rounded = 0
border_width = 0
background_color = #20262b 100
)";

constexpr std::string_view lxqtPanelConfiguration = R"([General]
panels=panel1
[panel1]
alignment=-1
panelSize=32
position=Bottom
plugins=statusnotifier
width=100
width-percent=true
[statusnotifier]
alignment=Right
type=statusnotifier
)";

void write(const fs::path& file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << content;
}

bool isInstalled(const std::string& program) {
    if (program.starts_with("/")) return ::access(program.c_str(), X_OK) == 0;
    const char* const path = std::getenv("PATH");
    std::string_view folders = path == nullptr ? "" : path;
    while (!folders.empty()) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        if (::access((std::string(folder) + "/" + program).c_str(), X_OK) == 0) return true;
    }
    return false;
}

std::string lastLines(const fs::path& file) {
    constexpr std::size_t enough = 600;
    std::ifstream input(file, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(input), {}};
    return content.size() > enough ? content.substr(content.size() - enough) : content;
}

}  // namespace

std::vector<std::string> PrivateDesktop::missingPackages(const Setup& setup) {
    struct Need {
        bool isNeeded;
        const char* program;
        const char* package;
    };
    const std::array needs{
        Need{.isNeeded = true, .program = "Xvfb", .package = "xvfb"},
        Need{.isNeeded = true, .program = "dbus-daemon", .package = "dbus"},
        Need{.isNeeded = true, .program = "openbox", .package = "openbox"},
        Need{.isNeeded = !setup.monitors.empty(), .program = "xrandr", .package = "x11-xserver-utils"},
        Need{.isNeeded = setup.compositor == Compositor::picom, .program = "picom", .package = "picom"},
        Need{.isNeeded = setup.tray == Tray::tint2, .program = "tint2", .package = "tint2"},
        Need{.isNeeded = setup.tray == Tray::lxqtPanel, .program = "lxqt-panel", .package = "lxqt-panel"},
        Need{.isNeeded = setup.accessibility == Accessibility::on,
             .program = accessibilityLauncher,
             .package = "at-spi2-core"}};
    std::vector<std::string> missing;
    for (const Need& need : needs) {
        if (need.isNeeded && !isInstalled(need.program)) missing.emplace_back(need.package);
    }
    return missing;
}

PrivateDesktop::PrivateDesktop(const Setup& setup) {
    if (const auto missing = missingPackages(setup); !missing.empty()) {
        std::string message = "a desktop needs packages that are not installed:";
        for (const std::string& package : missing) message += " " + package;
        throw Error(message);
    }
    bus_ = std::make_unique<PrivateBus>();
    busView_ = std::make_unique<BusView>(bus_->address());
    fs::create_directories(home() / "run");
    fs::permissions(home() / "run", fs::perms::owner_all);
    startServer(setup);
    if (!setup.monitors.empty()) setMonitors(setup.monitors);
    if (setup.windowManager == WindowManager::openbox) startWindowManager();
    if (setup.compositor == Compositor::picom) startCompositor();
    if (setup.accessibility == Accessibility::on) startAccessibility();
    if (setup.tray == Tray::tint2) startTint2();
    if (setup.tray == Tray::lxqtPanel) startLxqtPanel();
}

PrivateDesktop::~PrivateDesktop() {
    for (auto* const program : {&tray_, &accessibility_, &compositor_, &windowManager_}) program->reset();
    view_.reset();
    if (server_) server_->terminate();  // politely: it has a socket and a lock to take away
}

std::vector<std::string> PrivateDesktop::environment() const {
    const char* const path = std::getenv("PATH");
    std::vector<std::string> variables{"HOME=" + home().string(),
                                       "PATH=" + std::string(path == nullptr ? "/usr/bin:/bin" : path),
                                       "XDG_CONFIG_HOME=" + configurationFolder().string(),
                                       "XDG_DATA_HOME=" + dataFolder().string(),
                                       "XDG_CACHE_HOME=" + (home() / "cache").string(),
                                       "XDG_STATE_HOME=" + (home() / "state").string(),
                                       "XDG_RUNTIME_DIR=" + (home() / "run").string(),
                                       "XDG_SESSION_TYPE=x11",
                                       "DISPLAY=" + display_,
                                       "DBUS_SESSION_BUS_ADDRESS=" + bus_->address(),
                                       "LANG=C.UTF-8",
                                       "QT_QPA_PLATFORM=xcb",
                                       "NO_PROXY=*"};
    variables.emplace_back(isAccessible_ ? "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1" : "NO_AT_BRIDGE=1");
    return variables;
}

fs::path PrivateDesktop::logOf(const std::string& program) const {
    return home() / (fs::path(program).filename().string() + ".log");
}

std::unique_ptr<ChildProcess> PrivateDesktop::start(const Program& program) const {
    ChildProcess::Setup setup{.arguments = program.arguments,
                              .environment = program.environment,
                              .input = program.inputText,
                              .afterInput = program.input,
                              .log = logOf(program.arguments.front()),
                              .output = program.output};
    // Of two values of a variable the first counts.
    const std::vector<std::string> common = environment();
    setup.environment.insert(setup.environment.end(), common.begin(), common.end());
    return std::make_unique<ChildProcess>(setup);
}

void PrivateDesktop::startServer(const Setup& setup) {
    const std::string size = std::to_string(setup.width) + "x" + std::to_string(setup.height) + "x24";
    server_ = start(
        {.arguments = {"Xvfb", "-displayfd", "1", "-screen", "0", size, "-dpi", "96", "-nolisten", "tcp", "-noreset"},
         .output = ChildProcess::Output::lines});
    const std::string number = server_->readLine();  // written once it accepts connections
    if (number.empty()) throw Error("Xvfb did not start: " + lastLines(logOf("Xvfb")));
    display_ = ":" + number;
    view_ = std::make_unique<X11View>(display_);
    paintBackground();
}

// Set for compositors too, which paint what these properties name.
void PrivateDesktop::paintBackground() {
    xcb_connection_t* const x = view_->connection();
    const xcb_window_t root = view_->root();
    const xcb_pixmap_t pixmap = xcb_generate_id(x);
    xcb_create_pixmap(x, view_->screen().root_depth, pixmap, root, 1, 1);
    const xcb_gcontext_t context = xcb_generate_id(x);
    xcb_create_gc(x, context, pixmap, XCB_GC_FOREGROUND, &backgroundColor);
    const xcb_rectangle_t all{.x = 0, .y = 0, .width = 1, .height = 1};
    xcb_poly_fill_rectangle(x, pixmap, context, 1, &all);
    for (const char* const name : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"}) {
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, root, view_->atom(name), XCB_ATOM_PIXMAP, 32, 1, &pixmap);
    }
    xcb_change_window_attributes(x, root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(x, 0, root, 0, 0, 0, 0);
    view_->synchronize();
}

// By xrandr: the request for it in libxcb 1.15 sends a length that breaks the connection.
void PrivateDesktop::xrandr(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{"xrandr"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    if (start({.arguments = command})->waitForEnd() != 0) throw Error("xrandr failed: " + lastLines(logOf("xrandr")));
}

void PrivateDesktop::setMonitors(const std::vector<Monitor>& monitors) {
    for (const std::string& name : monitorNames_) xrandr({"--delmonitor", name});
    monitorNames_.clear();
    const auto millimetres = [](int pixels) { return std::to_string(std::lround(pixels * 25.4 / 96)); };
    for (const auto& [name, area] : monitors) {
        const std::string geometry = std::to_string(area.width) + "/" + millimetres(area.width) + "x" +
                                     std::to_string(area.height) + "/" + millimetres(area.height) + "+" +
                                     std::to_string(area.x) + "+" + std::to_string(area.y);
        // The server's one output belongs to the first monitor, which an asterisk makes the primary one.
        const bool isFirst = monitorNames_.empty();
        xrandr({"--setmonitor", (isFirst ? "*" : "") + name, geometry, isFirst ? "screen" : "none"});
        monitorNames_.push_back(name);
    }
}

void PrivateDesktop::waitForSelection(const std::string& selection, const std::string& program) const {
    try {
        waitFor(program, [&] { return view_->selectionOwner(selection) != XCB_WINDOW_NONE; });
    } catch (const Error& error) {
        throw Error(error.errorDescription() + ": " + lastLines(logOf(program)));
    }
}

void PrivateDesktop::startWindowManager() {
    const fs::path configuration = configurationFolder() / "openbox/rc.xml";
    write(configuration, openboxConfiguration);
    windowManager_ = start({.arguments = {"openbox", "--sm-disable", "--config-file", configuration.string()}});
    waitFor("openbox", [this] {
        const auto window = view_->numbers(view_->root(), "_NET_SUPPORTING_WM_CHECK");
        return !window.empty() && view_->numbers(window.front(), "_NET_SUPPORTING_WM_CHECK") == window;
    });
}

void PrivateDesktop::startCompositor() {
    compositor_ =
        start({.arguments = {"picom", "--config", "/dev/null", "--backend", "xrender", "--no-fading-openclose"}});
    waitForSelection("_NET_WM_CM_S0", "picom");
}

void PrivateDesktop::startTint2() {
    const fs::path configuration = configurationFolder() / "tint2/tint2rc";
    write(configuration, tint2Configuration);
    tray_ = start({.arguments = {"tint2", "-c", configuration.string()}});
    waitForSelection(traySelection, "tint2");
}

void PrivateDesktop::restartTray() {
    tray_.reset();
    waitFor("the end of the tray", [this] { return view_->selectionOwner(traySelection) == XCB_WINDOW_NONE; });
    startTint2();
}

void PrivateDesktop::startLxqtPanel() {
    write(configurationFolder() / "lxqt/panel.conf", lxqtPanelConfiguration);
    tray_ = start({.arguments = {"lxqt-panel"}});
    waitFor("lxqt-panel", [this] { return busView_->hasOwner("org.kde.StatusNotifierWatcher"); });
}

void PrivateDesktop::startAccessibility() {
    isAccessible_ = true;
    accessibility_ = start({.arguments = {accessibilityLauncher, "--launch-immediately"}});
    waitFor("the accessibility bus", [this] { return busView_->hasOwner("org.a11y.Bus"); });
}

}  // namespace ovrin
