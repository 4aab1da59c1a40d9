// Everything inside the settings window: the sidebar and the pages.
#pragma once

#include <string>

#include "base/published.h"
#include "settings/settings_section.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVChoiceBar;
class OVPageStack;
class SettingsPage;
class SettingsViewModel;

class SettingsView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it. Takes ownership of the page with the shortcuts,
    // which has a view model of its own.
    SettingsView(ViewEnvironment& environment, const Published<std::string>& brandImage, SettingsViewModel& viewModel,
                 SettingsPage* shortcutsPage);

    // Gives the keyboard to the sidebar.
    void focusSidebar();

private:
    void addShortcuts();
    void showSection(SettingsSection section);

    SettingsViewModel& viewModel_;
    OVChoiceBar* sections_;
    OVPageStack* pages_;
    Subscription selection_;
};

}  // namespace ovrin
