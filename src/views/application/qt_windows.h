// Makes the windows of the assistant: for each presenter and controller what it shows its view model with.
#pragma once

#include <memory>
#include <string>

#include "app/toast_window.h"
#include "base/published.h"
#include "settings/settings_window.h"
#include "shortcuts/command_palette_presenter.h"
#include "updates/update_window.h"
#include "windows/direct_ai_panel.h"
#include "windows/history_window.h"
#include "windows/input_translate_window.h"
#include "windows/mini_popover_window.h"
#include "windows/result_panel_window.h"

namespace ovrin {

class KeyboardLayout;
class ShortcutsPageViewModel;
class ViewEnvironment;

// Main thread. What it is made of outlives it and every window; the makers may outlive it.
class QtWindows {
public:
    // brandImage: the name of the picture in the windows' title bars.
    QtWindows(ViewEnvironment& environment, const Published<std::string>& brandImage);

    ToastWindow::ShowPanel toasts() const;
    MakeResultPanelWindow resultPanels() const;
    MakeMiniPopoverWindow translationCards() const;
    MakeInputTranslateWindow inputTranslation() const;
    MakeDirectAIPanel directAI() const;
    MakeHistoryWindow history() const;
    MakeUpdateWindow updates() const;
    MakeCommandPalettePanel commandPalettes() const;

    std::unique_ptr<SettingsWindow> makeSettings(SettingsViewModel& viewModel, const KeyboardLayout& keyboardLayout,
                                                 ShortcutsPageViewModel& shortcuts) const;

private:
    ViewEnvironment& environment_;
    const Published<std::string>& brandImage_;
};

}  // namespace ovrin
