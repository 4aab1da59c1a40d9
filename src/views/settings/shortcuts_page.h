// The page of the settings with the recorders of the global shortcuts.
#pragma once

#include <vector>

#include "base/published.h"
#include "platform/keyboard_layout.h"
#include "settings/shortcuts_page_view_model.h"
#include "views/settings/settings_page.h"

namespace ovrin {

class SettingsRow;

class ShortcutsPage final : public SettingsPage {
    Q_OBJECT

public:
    // All of them outlive it.
    ShortcutsPage(ViewEnvironment& environment, const KeyboardLayout& layout, ShortcutsPageViewModel& viewModel);

protected:
    bool event(QEvent* event) override;

private:
    SettingsRow* makeRow(ShortcutRow& row, const KeyboardLayout& layout);

    ShortcutsPageViewModel& viewModel_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
