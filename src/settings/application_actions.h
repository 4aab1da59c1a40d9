// What the user can have the program itself do, beside the actions on texts: its other windows, updates, the end.
#pragma once

#include <optional>

#include "settings/settings_section.h"

namespace ovrin {

// Main thread. Each operation returns at once.
class ApplicationActions {
public:
    virtual ~ApplicationActions() = default;

    virtual void showHistory() = 0;
    // On that page, or on the one that was on show last.
    virtual void showSettings(std::optional<SettingsSection> section) = 0;

    // Whether the build knows where updates come from.
    virtual bool isUpdateConfigured() const = 0;
    // Says in a toast why not when it can't.
    virtual void checkForUpdates() = 0;

    // Takes over what other processes have changed about the preferences and the key.
    virtual void reload() = 0;

    virtual void quit() = 0;
};

}  // namespace ovrin
