#include "views/application/qt_windows.h"

#include <utility>

#include "views/command_palette/command_palette_view.h"
#include "views/direct_ai/qt_direct_ai_panel.h"
#include "views/history/qt_history_window.h"
#include "views/input_translate/qt_input_translate_window.h"
#include "views/mini_popover/mini_popover_panel.h"
#include "views/result_panel/qt_result_panel_window.h"
#include "views/settings/qt_settings_window.h"
#include "views/settings/shortcuts_page.h"
#include "views/toast/toast_panel.h"
#include "views/updates/qt_update_window.h"

namespace ovrin {
namespace {

// Makes windows of the type: of the environment, the picture, and what a presenter hands over.
template <typename Window>
auto maker(ViewEnvironment& environment, const Published<std::string>& brandImage) {
    return [&environment, &brandImage](auto&&... rest) {
        return std::make_unique<Window>(environment, brandImage, std::forward<decltype(rest)>(rest)...);
    };
}

}  // namespace

QtWindows::QtWindows(ViewEnvironment& environment, const Published<std::string>& brandImage)
    : environment_(environment), brandImage_(brandImage) {}

ToastWindow::ShowPanel QtWindows::toasts() const {
    return [&environment = environment_](const std::string& message, OVIcon icon) {
        return std::make_unique<ToastPanel>(environment, message, icon);
    };
}

MakeResultPanelWindow QtWindows::resultPanels() const {
    return maker<QtResultPanelWindow>(environment_, brandImage_);
}

MakeMiniPopoverWindow QtWindows::translationCards() const {
    return maker<MiniPopoverPanel>(environment_, brandImage_);
}

MakeInputTranslateWindow QtWindows::inputTranslation() const {
    return maker<QtInputTranslateWindow>(environment_, brandImage_);
}

MakeDirectAIPanel QtWindows::directAI() const {
    return maker<QtDirectAIPanel>(environment_, brandImage_);
}

MakeHistoryWindow QtWindows::history() const {
    return maker<QtHistoryWindow>(environment_, brandImage_);
}

MakeUpdateWindow QtWindows::updates() const {
    return maker<QtUpdateWindow>(environment_, brandImage_);
}

MakeCommandPalettePanel QtWindows::commandPalettes() const {
    return [&environment = environment_](CommandPaletteViewModel& viewModel, std::function<void()> requestClose) {
        return std::make_unique<CommandPaletteView>(environment, viewModel, std::move(requestClose));
    };
}

std::unique_ptr<SettingsWindow> QtWindows::makeSettings(SettingsViewModel& viewModel,
                                                        const KeyboardLayout& keyboardLayout,
                                                        ShortcutsPageViewModel& shortcuts) const {
    return std::make_unique<QtSettingsWindow>(environment_, brandImage_, viewModel,
                                              new ShortcutsPage(environment_, keyboardLayout, shortcuts));
}

}  // namespace ovrin
