#include "app/status_bar_controller.h"

#include <chrono>
#include <utility>

#include "app/remote_command.h"
#include "base/text.h"
#include "base/watch.h"
#include "platform/shortcut_description.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

constexpr double busyAlpha = 0.58;
// A host that asked for the menu and went astray is not to keep the shortcuts for ever.
constexpr auto longestHostMenu = 30s;
// Until a host that has asked tells that the menu is open. GNOME's extension asks as soon as it shows the icon, which
// is not to cost the shortcuts the first half minute of the session.
constexpr auto timeToOpen = 3s;

void setControlKey(MenuItem& item, char key) {
    item.controlKey = key;
    item.keyEquivalent =
        KeyboardShortcuts::description(KeyboardShortcuts::Modifiers::control, text::uppercased(std::string(1, key)));
}

}  // namespace

StatusBarController::StatusBarController(Surroundings surroundings) : surroundings_(std::move(surroundings)) {
    configureButton();
    observeActivity();
}

StatusBarController::~StatusBarController() {
    surroundings_.statusItem.setEvents({});
    menuDidClose();
}

void StatusBarController::configureButton() {
    leftClick_ = watch(surroundings_.statusItem.leftClick(), [this](StatusItem::LeftClick click) {
        const bool isHeard = click == StatusItem::LeftClick::isHeard;
        surroundings_.statusItem.setToolTip(isHeard ? "Ovrin · 左键显示翻译结果，右键打开菜单" : "Ovrin");
    });
    surroundings_.statusItem.setEvents({.leftClicked = [this] { handleLeftClick(); },
                                        .rightClicked = [this] { showMenu(); },
                                        .menuWillOpen = [this] { menuWillOpen(); },
                                        .hostMenuWillOpen = [this] { hostMenuWillOpen(); },
                                        .hostMenuDidOpen = [this] { hostMenuDidOpen(); },
                                        .menuDidClose = [this] { menuDidClose(); },
                                        .makeMenu = [this] { return makeMenu(); }});
}

void StatusBarController::observeActivity() {
    capturing_ = watch(surroundings_.isCapturing,
                       [this](bool isCapturing) { surroundings_.statusItem.setAlpha(isCapturing ? busyAlpha : 1); });
}

void StatusBarController::handleLeftClick() {
    if (surroundings_.hasTranslationResult() && surroundings_.actions.showLatestResult()) return;
    showMenu();
}

void StatusBarController::showMenu() {
    surroundings_.statusItem.showMenu(makeMenu());
}

std::optional<std::string> StatusBarController::itemUsing(const KeyboardShortcuts::Shortcut& shortcut,
                                                          const KeyboardLayout& layout) const {
    if (shortcut.modifiers() != KeyboardShortcuts::Modifiers::control) return std::nullopt;
    const auto character = layout.character(shortcut.key());
    for (const MenuItem& item : makeMenu()) {
        if (item.controlKey && character == std::string(1, *item.controlKey)) return item.title;
    }
    return std::nullopt;
}

// The keys of shortcuts that are typed while the menu is open are meant for the menu.
void StatusBarController::menuWillOpen() {
    isMenuOpen_ = true;
    surroundings_.registry.suspend();
}

void StatusBarController::hostMenuWillOpen() {
    suspendFor(isHostMenuOpen_ ? longestHostMenu : timeToOpen);
}

void StatusBarController::hostMenuDidOpen() {
    isHostMenuOpen_ = true;
    suspendFor(longestHostMenu);
}

void StatusBarController::suspendFor(EventLoop::Duration limit) {
    menuWillOpen();
    if (hostMenuLimit_) surroundings_.loop.cancelTimer(*hostMenuLimit_);
    hostMenuLimit_ = surroundings_.loop.postAfter(limit, [this] { menuDidClose(); });
}

void StatusBarController::menuDidClose() {
    isHostMenuOpen_ = false;
    if (const auto limit = std::exchange(hostMenuLimit_, std::nullopt)) surroundings_.loop.cancelTimer(*limit);
    if (std::exchange(isMenuOpen_, false)) surroundings_.registry.resume();
}

Menu StatusBarController::makeMenu() const {
    Menu menu{
        item(OvShortcut::captureOCR),
        item(OvShortcut::captureTranslate),
        item(OvShortcut::askWhatIsThis),
        item(OvShortcut::directAskAI),
        item(OvShortcut::inputTranslate),
        item(OvShortcut::commandPalette),
        MenuItem::separator(),
        {.title = "划词与静默操作", .submenu = selectionMenu()},
        {.title = "剪贴板", .submenu = clipboardMenu()},
        item(OvShortcut::showResultWindow),
        item(ApplicationCommand::history),
        MenuItem::separator(),
    };
    if (auto row = statusRow()) menu.push_back(std::move(*row));
    menu.push_back(item(ApplicationCommand::checkForUpdates));
    menu.push_back(item(ApplicationCommand::settings));
    setControlKey(menu.back(), ',');
    menu.push_back(MenuItem::separator());
    menu.push_back(item(ApplicationCommand::quit));
    setControlKey(menu.back(), 'q');
    return menu;
}

Menu StatusBarController::selectionMenu() const {
    return {item(OvShortcut::selectionTranslate, Symbol::none),
            item(OvShortcut::silentSelectionTranslate, Symbol::none),
            item(OvShortcut::silentInputTranslate, Symbol::none), item(OvShortcut::silentCaptureOCR, Symbol::none)};
}

Menu StatusBarController::clipboardMenu() const {
    return {item(OvShortcut::clipboardOCR, Symbol::none), item(OvShortcut::clipboardTranslate, Symbol::none)};
}

std::optional<MenuItem> StatusBarController::statusRow() const {
    if (const auto& activity = surroundings_.activityText.value()) {
        return MenuItem{.title = *activity, .icon = OVIcon::sparkles, .isEnabled = false};
    }
    if (!surroundings_.isModelReady()) {
        return MenuItem{.title = "请配置模型服务", .icon = OVIcon::circleAlert, .isEnabled = false};
    }
    return std::nullopt;
}

// An action that the user can also give a global shortcut; its keys choose the item too.
MenuItem StatusBarController::item(OvShortcut shortcut, Symbol symbol) const {
    const auto& registry = surroundings_.registry;
    const ActionDescription& action = description(shortcut);
    return {.title = std::string(action.menuTitle()),
            .icon = symbol == Symbol::shown ? std::optional(OVIcon(action.symbolName)) : std::nullopt,
            .keyEquivalent = registry.usableShortcutDisplay(name(shortcut)).value_or(""),
            .shortcut = registry.getShortcut(name(shortcut)),
            .action = [&actions = surroundings_.actions, shortcut] { perform(shortcut, actions); }};
}

MenuItem StatusBarController::item(ApplicationCommand command) const {
    const ActionDescription& action = description(command);
    return {
        .title = std::string(action.menuTitle()),
        .icon = action.symbolName.empty() ? std::nullopt : std::optional(OVIcon(action.symbolName)),
        .isEnabled = command != ApplicationCommand::checkForUpdates || surroundings_.application.isUpdateConfigured(),
        .action = [command, &application = surroundings_.application] { perform(command, std::nullopt, application); }};
}

}  // namespace ovrin
