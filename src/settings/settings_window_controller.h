// Owns the one settings window and what it edits: made on first use, kept for the rest of the process.
#pragma once

#include <memory>
#include <optional>

#include "settings/settings_section.h"
#include "settings/settings_view_model.h"
#include "settings/settings_window.h"

namespace ovrin {

// Main thread.
class SettingsWindowController {
public:
    // What the services refer to outlives the controller.
    SettingsWindowController(SettingsViewModel::Services services, MakeSettingsWindow makeWindow);
    SettingsWindowController(const SettingsWindowController&) = delete;
    SettingsWindowController& operator=(const SettingsWindowController&) = delete;
    ~SettingsWindowController();

    // On the given page, else on the one shown last (通用 at first).
    void show(std::optional<SettingsSection> section = std::nullopt);

    // Something outside may have changed the preferences or the keyring. While the window is hidden that waits for the
    // next show(): reading a locked keyring asks the user for a password.
    void reload();

private:
    SettingsViewModel::Services services_;
    MakeSettingsWindow makeWindow_;
    std::unique_ptr<SettingsViewModel> viewModel_;
    std::unique_ptr<SettingsWindow> window_;
    bool isOutdated_ = false;
};

}  // namespace ovrin
