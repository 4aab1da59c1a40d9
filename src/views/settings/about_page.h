// The page 关于: which program and version this is, and whether there is a newer one.
#pragma once

#include "settings/settings_view_model.h"
#include "views/settings/settings_page.h"

namespace ovrin {

class AboutPage final : public SettingsPage {
    Q_OBJECT

public:
    // The view model outlives it.
    AboutPage(ViewEnvironment& environment, SettingsViewModel& viewModel);
};

}  // namespace ovrin
