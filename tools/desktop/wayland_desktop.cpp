#include "desktop/wayland_desktop.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/json.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "desktop/bus_view.h"
#include "desktop/picture.h"
#include "desktop/wait.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_screen_capture.h"

namespace ovrin {

namespace {

constexpr const char* displayVariable = "WAYLAND_DISPLAY";
constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

PixelArea areaOf(const json::Value& frame) {
    const auto value = [&frame](const char* key) { return static_cast<int>(json::integer(frame, key).value_or(0)); };
    return {.x = value("x"), .y = value("y"), .width = value("width"), .height = value("height")};
}

void collect(const json::Value& node, std::vector<WaylandDesktop::Window>& windows) {
    if (json::string(node, "app_id")) {
        windows.push_back({.title = json::string(node, "name").value_or(""),
                           .area = areaOf(node.at("rect")),
                           .isFloating = json::string(node, "type") == "floating_con",
                           .hasFocus = json::boolean(node, "focused").value_or(false)});
    }
    for (const char* const kind : {"nodes", "floating_nodes"}) {
        for (const json::Value& child : node.at(kind)) collect(child, windows);
    }
}

}  // namespace

WaylandDesktop::WaylandDesktop(const std::vector<HeadlessOutput>& outputs)
    : busView_(std::make_unique<BusView>(bus_.address())), sway_(std::in_place, outputs) {
    begin();
}

WaylandDesktop::WaylandDesktop(const Setup& setup) : busView_(std::make_unique<BusView>(bus_.address())) {
    const auto points = [&setup](int pixels) { return static_cast<int>(std::lround(pixels / setup.scale)); };
    if (setup.compositor == Compositor::sway) {
        std::vector<HeadlessOutput> outputs;
        for (int output = 0; output < setup.outputs; ++output) {
            outputs.push_back({.width = setup.width,
                               .height = setup.height,
                               .scale = setup.scale,
                               .x = points(output * setup.width)});
        }
        sway_.emplace(outputs);
    } else {
        install(applicationId, setup.program);
        install("ovrin-test", std::filesystem::read_symlink("/proc/self/exe"));
        kwin_.emplace(KWinTestCompositor::Session{.busAddress = bus_.address(),
                                                  .dataFolder = home() / "data",
                                                  .width = points(setup.width),
                                                  .height = points(setup.height),
                                                  .outputs = setup.outputs,
                                                  .scale = setup.scale});
    }
    begin();
    accessibility_ = start({.arguments = {"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"}});
    waitFor("the accessibility bus", [this] { return busView_->hasOwner("org.a11y.Bus"); });
}

WaylandDesktop::~WaylandDesktop() {
    ::unsetenv(displayVariable);
    ::unsetenv(busVariable);
}

void WaylandDesktop::begin() {
    ::setenv(displayVariable, display().c_str(), 1);
    ::setenv(busVariable, bus_.address().c_str(), 1);
    std::filesystem::create_directories(home() / "config");
}

// The entry is the packaged one, but for the path.
void WaylandDesktop::install(const std::string& name, const std::filesystem::path& program) const {
    std::ifstream packaged(OVRIN_SOURCE_DIR "/packaging/com.quel.ovrin.desktop");
    const std::filesystem::path folder = home() / "data/applications";
    std::filesystem::create_directories(folder);
    std::ofstream entry(folder / (name + ".desktop"));
    for (std::string line; std::getline(packaged, line);) {
        entry << (line == "Exec=ovrin" ? "Exec=" + program.string() : line) << '\n';
    }
}

std::vector<std::string> WaylandDesktop::environment() const {
    const char* const path = std::getenv("PATH");
    const std::string home = this->home().string();
    return {"HOME=" + home,
            "PATH=" + std::string(path == nullptr ? "/usr/bin:/bin" : path),
            "XDG_CONFIG_HOME=" + home + "/config",
            "XDG_DATA_HOME=" + home + "/data",
            "XDG_CACHE_HOME=" + home + "/cache",
            "XDG_STATE_HOME=" + home + "/state",
            "XDG_RUNTIME_DIR=" + (sway_ ? sway_->runtimeFolder() : kwin_->runtimeFolder()).string(),
            "XDG_SESSION_TYPE=wayland",
            displayVariable + ("=" + display()),
            "DBUS_SESSION_BUS_ADDRESS=" + bus_.address(),
            "LANG=C.UTF-8",
            accessibility_ ? "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1" : "NO_AT_BRIDGE=1",
            "NO_PROXY=*"};
}

std::unique_ptr<ChildProcess> WaylandDesktop::start(const Program& program) const {
    // Of two values of a variable the first counts.
    std::vector<std::string> variables = program.environment;
    const std::vector<std::string> common = environment();
    variables.insert(variables.end(), common.begin(), common.end());
    return std::make_unique<ChildProcess>(ChildProcess::Setup{.arguments = program.arguments,
                                                              .environment = std::move(variables),
                                                              .afterInput = program.input,
                                                              .log = home() / "log",
                                                              .output = program.output});
}

std::string WaylandDesktop::log() const {
    std::ifstream file(home() / "log", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string WaylandDesktop::selectedText(Selection selection) const {
    std::vector<std::string> command{"wl-paste", "--no-newline", "--type", "text"};
    if (selection == Selection::primary) command.emplace_back("--primary");
    const std::unique_ptr<ChildProcess> reader = start({.arguments = command, .output = ChildProcess::Output::lines});
    std::string text;
    for (std::string line = reader->readLine(); !line.empty(); line = reader->readLine()) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

void WaylandDesktop::copyText(const std::string& text, Selection selection) {
    std::vector<std::string> command{"wl-copy", "--foreground"};
    if (selection == Selection::primary) command.emplace_back("--primary");
    command.insert(command.end(), {"--", text});
    copiers_.at(static_cast<std::size_t>(selection)) = start({.arguments = command});
    waitFor("the text on the clipboard", [&] { return selectedText(selection) == text; });
}

std::vector<WaylandDesktop::Window> WaylandDesktop::windows() const {
    const ChildProcess::Setup setup{
        .arguments = {"swaymsg", "--socket", sway_->controlSocket().string(), "--raw", "--type", "get_tree"},
        .environment = environment()};
    ChildProcess question(setup);
    std::string answer;
    for (std::string line = question.readLine(); !line.empty(); line = question.readLine()) answer += line;
    std::vector<Window> windows;
    collect(json::parseOrThrow(answer), windows);
    return windows;
}

WaylandDesktop::Window WaylandDesktop::waitForWindow(const std::string& titleBeginning) const {
    const auto found = [&]() -> std::optional<Window> {
        for (const Window& window : windows()) {
            if (window.title.starts_with(titleBeginning)) return window;
        }
        return std::nullopt;
    };
    return *waitFor("the window " + titleBeginning, found);
}

std::unique_ptr<ScreenCapture> WaylandDesktop::makeCapture(WorkerExecutor& workers) const {
    if (sway_) return std::make_unique<WaylandScreenCapture>(workers);
    return std::make_unique<KWinScreenCapture>(workers);
}

QImage WaylandDesktop::picture(std::size_t output) const {
    RunLoop loop;
    WorkerExecutor workers(1);
    const std::unique_ptr<ScreenCapture> capture = makeCapture(workers);
    const CapturableDisplay display = loop.complete(capture->displays()).at(output);
    const auto pixels = [&display](double points) { return static_cast<int>(points * display.scaleFactor); };
    const Image image =
        loop.complete(capture->screenshot({.display = display.id,
                                           .sourceRect = {0, 0, display.frame.width, display.frame.height},
                                           .width = pixels(display.frame.width),
                                           .height = pixels(display.frame.height)}));
    return QImage(image.data(), image.width(), image.height(), QImage::Format_ARGB32)
        .convertToFormat(QImage::Format_RGB32);
}

PixelArea WaylandDesktop::difference(const QImage& before, const QImage& after) {
    int left = before.width();
    int right = -1;
    int top = before.height();
    int bottom = -1;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            if (before.pixel(x, y) == after.pixel(x, y)) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = y;
        }
    }
    if (right < 0) return {};
    return {.x = left, .y = top, .width = right - left + 1, .height = bottom - top + 1};
}

QImage WaylandDesktop::settledPicture(std::size_t output) const {
    QImage last = picture(output);
    return waitFor("the output to be still",
                   [&]() -> std::optional<QImage> {
                       constexpr std::chrono::milliseconds moment{120};
                       std::this_thread::sleep_for(moment);
                       const QImage before = std::exchange(last, picture(output));
                       return before == last ? std::optional(last) : std::nullopt;
                   })
        .value();
}

WaylandSampleProgram::WaylandSampleProgram(const WaylandDesktop& desktop, const std::string& program, Kind kind)
    : SampleDialogue(nullptr) {
    const QImage before = desktop.settledPicture();
    start(desktop.start({.arguments = command(program, kind),
                         .environment = {"QT_QPA_PLATFORM=wayland", "QT_WAYLAND_DISABLE_WINDOWDECORATION=1"},
                         .input = ChildProcess::Input::staysOpen,
                         .output = ChildProcess::Output::lines}));
    waitFor("the sample program's window", [&] {
        area_ = WaylandDesktop::difference(before, desktop.settledPicture());
        constexpr int smallestWidth = 300;  // more than what else may change
        return area_.width >= smallestWidth;
    });
}

WaylandAssistant::WaylandAssistant(const WaylandDesktop& desktop, Setup setup)
    : desktop_(desktop), setup_(std::move(setup)) {
    const std::filesystem::path folder = desktop.home() / "config/Ovrin";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "preferences.json") << R"({"ovrin.didDismissWelcome":true})";
    std::vector<std::string>& variables = setup_.environment;
    variables.emplace_back("OVRIN_LOCAL_PORTS=none");
    if (!setup_.serviceURL.empty()) {
        variables.insert(variables.end(), {"OVRIN_BASE_URL=" + setup_.serviceURL, "OVRIN_API_KEY=practice"});
    }
    process_ = desktop.start({.arguments = {setup_.program}, .environment = variables});
    waitFor("the assistant on the bus", [this] {
        if (!process_->isRunning()) throw Error("the assistant ended: " + desktop_.log());
        return desktop_.bus().hasOwner(applicationId) || desktop_.log().find("no session bus") != std::string::npos;
    });
}

int WaylandAssistant::perform(const std::string& action) const {
    return desktop_.start({.arguments = {setup_.program, "do", action}, .environment = setup_.environment})
        ->waitForEnd();
}

}  // namespace ovrin
