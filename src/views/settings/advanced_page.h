// The page 高级: prompts of the user's own, what the session permits and can do, and the stored history.
#pragma once

#include <vector>

#include "settings/settings_view_model.h"
#include "views/settings/settings_binding.h"
#include "views/settings/settings_page.h"

namespace ovrin {

class SettingsCard;

class AdvancedPage final : public SettingsPage {
    Q_OBJECT

public:
    // The view model outlives it.
    AdvancedPage(ViewEnvironment& environment, SettingsViewModel& viewModel);

protected:
    bool event(QEvent* event) override;

private:
    SettingsCard* makePromptCard();
    SettingsCard* makeDataCard();
    QWidget* makePromptBar();
    void showCapabilities(const std::vector<Capability>& capabilities);
    void askToClearHistory();

    SettingsViewModel& viewModel_;
    SettingsStore& store_;
    QWidget* capabilities_;
    SettingsBinding binding_;
};

}  // namespace ovrin
