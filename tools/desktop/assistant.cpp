#include "desktop/assistant.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "base/error.h"
#include "desktop/picture.h"
#include "desktop/wait.h"

namespace ovrin {
namespace {

constexpr const char* busName = "com.quel.ovrin";
constexpr const char* programName = "ovrin";
constexpr const char* practiceKey = "practice-key";

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

}  // namespace

Assistant::Assistant(const PrivateDesktop& desktop, const TestUser& user, const Setup& setup)
    : desktop_(desktop), user_(user), setup_(setup) {
    json::Value preferences = setup.preferences;
    if (setup.launch == Setup::Launch::later) preferences["ovrin.didDismissWelcome"] = true;
    const std::filesystem::path folder = desktop.configurationFolder() / "Ovrin";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "preferences.json") << json::encoded(preferences);

    start();
}

void Assistant::start() {
    process_ = desktop_.start({.arguments = {setup_.program}, .environment = environment()});
    waitFor("the assistant", [this] {
        if (!process_->isRunning()) throw Error("the assistant ended at once: " + log());
        return (setup_.sign == Setup::Sign::icon || desktop_.bus().hasOwner(busName)) &&
               (setup_.sign == Setup::Sign::name || isInTray());
    });
}

void Assistant::restart() {
    process_->terminate();
    process_.reset();
    waitFor("the end of the assistant", [this] { return !desktop_.bus().hasOwner(busName) && !isInTray(); });
    start();
}

std::vector<std::string> Assistant::environment() const {
    std::vector<std::string> variables = setup_.environment;
    // Services of the machine are none of this desktop.
    constexpr const char* ports = "OVRIN_LOCAL_PORTS=";
    if (std::ranges::none_of(variables, [&](const std::string& variable) { return variable.starts_with(ports); })) {
        variables.push_back(std::string(ports) + "none");
    }
    if (setup_.serviceURL.empty()) return variables;
    variables.insert(variables.end(), {"OVRIN_BASE_URL=" + setup_.serviceURL, "OVRIN_API_STANDARD=" + setup_.standard,
                                       std::string("OVRIN_API_KEY=") + practiceKey});
    return variables;
}

std::string Assistant::shortcut(int keyCode, const std::vector<Modifier>& modifiers) {
    int mask = 0;
    for (const Modifier modifier : modifiers) mask |= static_cast<int>(modifier);
    return json::encoded({{"carbonKeyCode", keyCode}, {"carbonModifiers", mask}});
}

int Assistant::run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{setup_.program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return desktop_.start({.arguments = command, .environment = environment()})->waitForEnd();
}

std::optional<DesktopWindow> Assistant::trayIcon() const {
    const auto embedded = user_.view().embeddedWindows();
    const auto found = std::find_if(embedded.begin(), embedded.end(),
                                    [](const DesktopWindow& window) { return window.instance == programName; });
    return found == embedded.end() ? std::nullopt : std::optional(*found);
}

DesktopWindow Assistant::waitForTrayIcon() const {
    constexpr int iconOnPanel = 100;
    constexpr int enoughLooks = 10;
    int sameLooks = 0;
    DesktopWindow icon;
    waitFor("the tray icon", [&] {
        const auto found = trayIcon();
        const bool isSame = found && found->area == icon.area && contrast(user_.picture(icon.area)) > iconOnPanel;
        sameLooks = isSame ? sameLooks + 1 : 0;
        if (found) icon = *found;
        return sameLooks == enoughLooks;
    });
    return icon;
}

bool Assistant::isInTray() const {
    if (trayIcon()) return true;
    if (!desktop_.bus().hasOwner("org.kde.StatusNotifierWatcher")) return false;
    const Variant items = desktop_.bus().property({.destination = "org.kde.StatusNotifierWatcher",
                                                   .path = "/StatusNotifierWatcher",
                                                   .interface = "org.kde.StatusNotifierWatcher",
                                                   .name = "RegisteredStatusNotifierItems"});
    return g_variant_n_children(items.get()) > 0;
}

std::vector<DesktopWindow> Assistant::overlays() const {
    // Nothing else of the program is out of the window manager's reach and as large as a display.
    constexpr int smallestDisplay = 600;
    auto found = user_.find({.program = programName});
    std::erase_if(found, [](const DesktopWindow& window) {
        return !window.isOverrideRedirect || window.area.width < smallestDisplay ||
               window.area.height < smallestDisplay;
    });
    return found;
}

std::vector<DesktopWindow> Assistant::waitForOverlays(std::size_t count) const {
    return *waitFor("an overlay on every display", [&]() -> std::optional<std::vector<DesktopWindow>> {
        auto found = overlays();
        return found.size() == count ? std::optional(std::move(found)) : std::nullopt;
    });
}

std::optional<DesktopWindow> Assistant::toast() const {
    constexpr int width = 260;
    constexpr int height = 40;
    constexpr int widestShadow = 60;
    for (const DesktopWindow& window : user_.find({.program = programName})) {
        const int shadow = (window.area.width - width) / 2;  // the margin that it has where it has one
        if (shadow >= 0 && shadow <= widestShadow && window.area.height == height + 2 * shadow) return window;
    }
    return std::nullopt;
}

DesktopWindow Assistant::waitForToast() const {
    return *waitFor("a toast", [this] { return toast(); });
}

std::optional<DesktopWindow> Assistant::panel() const {
    constexpr int smallestPanel = 400;
    for (const DesktopWindow& window : user_.find({.title = "Ovrin", .program = programName})) {
        if (!window.isOverrideRedirect && window.area.height >= smallestPanel) return window;
    }
    return std::nullopt;
}

DesktopWindow Assistant::waitForPanel() const {
    return *waitFor("the result panel", [this] { return panel(); });
}

DesktopWindow Assistant::waitForPalette() const {
    return user_.waitForWindow({.title = "命令面板", .program = programName});
}

DesktopWindow Assistant::waitForMenu() const {
    constexpr int smallestHeight = 200;
    constexpr int largestWidth = 600;
    return *waitFor("the menu", [this]() -> std::optional<DesktopWindow> {
        for (const DesktopWindow& window : user_.find({.program = programName})) {
            const bool isOfItsShape = window.area.height > smallestHeight && window.area.width < largestWidth;
            if (window.isOverrideRedirect && isOfItsShape) return window;
        }
        return std::nullopt;
    });
}

json::Value Assistant::preferences() const {
    const auto preferences = json::parse(contentOf(desktop_.configurationFolder() / "Ovrin/preferences.json"));
    return preferences.value_or(json::Value::object());
}

json::Value Assistant::history() const {
    const auto history = json::parse(contentOf(desktop_.dataFolder() / "Ovrin/history.json"));
    return history.value_or(json::Value::array());
}

std::string Assistant::log() const {
    return contentOf(desktop_.logOf(setup_.program));
}

}  // namespace ovrin
