#include "app/status_bar_controller.h"

#include <utility>

#include "base/watch.h"

namespace ovrin {

namespace {

constexpr double busyAlpha = 0.58;

std::string controlKeyText(char key) {
    return std::string("⌃") + key;
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
    surroundings_.statusItem.setToolTip("Ovrin · 左键显示翻译结果，右键打开菜单");
    surroundings_.statusItem.setEvents({.leftClicked = [this] { handleLeftClick(); },
                                        .rightClicked = [this] { showMenu(); },
                                        .menuWillOpen = [this] { menuWillOpen(); },
                                        .menuDidClose = [this] { menuDidClose(); }});
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

// The keys of shortcuts that are typed while the menu is open are meant for the menu.
void StatusBarController::menuWillOpen() {
    isMenuOpen_ = true;
    surroundings_.registry.disable(allOvShortcutNames());
}

void StatusBarController::menuDidClose() {
    if (std::exchange(isMenuOpen_, false)) surroundings_.registry.enable(allOvShortcutNames());
}

Menu StatusBarController::makeMenu() const {
    ApplicationActions& application = surroundings_.application;
    Menu menu{
        item("截图 OCR", OvShortcut::captureOCR, OVIcon::scanText),
        item("截图翻译", OvShortcut::captureTranslate, OVIcon::languages),
        item("截图问 AI", OvShortcut::askWhatIsThis, OVIcon::messageQuestion),
        item("TalkBox", OvShortcut::directAskAI, OVIcon::sparkles),
        item("输入翻译", OvShortcut::inputTranslate, OVIcon::languages),
        item("命令面板", OvShortcut::commandPalette, OVIcon::command),
        MenuItem::separator(),
        {.title = "划词与静默操作", .submenu = selectionMenu()},
        {.title = "剪贴板", .submenu = clipboardMenu()},
        item("显示上次结果", OvShortcut::showResultWindow, OVIcon::history),
        item("历史记录", AppWindow::history, OVIcon::clock, [&application] { application.showHistory(); }),
        MenuItem::separator(),
    };
    if (auto row = statusRow()) menu.push_back(std::move(*row));
    menu.push_back({.title = "检查更新…",
                    .icon = OVIcon::refresh,
                    .isEnabled = application.isUpdateConfigured(),
                    .action = [&application] { application.checkForUpdates(); }});
    MenuItem settings =
        item("设置…", AppWindow::settings, OVIcon::settings, [&application] { application.showSettings(); });
    settings.controlKey = ',';
    settings.keyEquivalent = controlKeyText(',');
    menu.push_back(std::move(settings));
    menu.push_back(MenuItem::separator());
    menu.push_back(
        {.title = "退出 Ovrin", .keyEquivalent = controlKeyText('Q'), .controlKey = 'q', .action = [&application] {
             application.quit();
         }});
    return menu;
}

Menu StatusBarController::selectionMenu() const {
    return {item("划词翻译", OvShortcut::selectionTranslate),
            item("静默划词翻译", OvShortcut::silentSelectionTranslate),
            item("替换为译文", OvShortcut::silentInputTranslate), item("静默截图 OCR", OvShortcut::silentCaptureOCR)};
}

Menu StatusBarController::clipboardMenu() const {
    return {item("剪贴板 OCR", OvShortcut::clipboardOCR), item("剪贴板翻译", OvShortcut::clipboardTranslate)};
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
MenuItem StatusBarController::item(std::string title, OvShortcut shortcut, std::optional<OVIcon> icon) const {
    const auto& registry = surroundings_.registry;
    return {.title = std::move(title),
            .icon = icon,
            .keyEquivalent = registry.shortcutDisplay(name(shortcut)).value_or(""),
            .shortcut = registry.getShortcut(name(shortcut)),
            .isEnabled = isAvailable(shortcut),
            .action = [&actions = surroundings_.actions, shortcut] { perform(shortcut, actions); }};
}

MenuItem StatusBarController::item(std::string title, AppWindow window, OVIcon icon,
                                   std::function<void()> action) const {
    return {.title = std::move(title),
            .icon = icon,
            .isEnabled = surroundings_.application.has(window),
            .action = std::move(action)};
}

bool StatusBarController::isAvailable(OvShortcut shortcut) const {
    if (shortcut == OvShortcut::directAskAI) return surroundings_.application.has(AppWindow::directAI);
    if (shortcut == OvShortcut::inputTranslate) return surroundings_.application.has(AppWindow::inputTranslate);
    return true;
}

}  // namespace ovrin
