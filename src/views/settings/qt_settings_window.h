// The settings window.
#pragma once

#include <functional>
#include <string>

#include "base/published.h"
#include "settings/settings_window.h"
#include "views/components/ov_standard_window.h"

namespace ovrin {

class SettingsPage;
class SettingsView;

class QtSettingsWindow final : public OVStandardWindow, public SettingsWindow {
    Q_OBJECT

public:
    // For MakeSettingsWindow. The environment, the name of the brand's picture and the view model outlive it. Takes
    // ownership of the page with the shortcuts.
    QtSettingsWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                     SettingsViewModel& viewModel, SettingsPage* shortcutsPage);

    void present() override;
    bool isVisible() const override { return QWidget::isVisible(); }

private:
    SettingsView* view_;
};

}  // namespace ovrin
