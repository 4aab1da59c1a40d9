// The page 通用: the language, the look, and how the program behaves on the desktop.
#pragma once

#include "views/settings/settings_binding.h"
#include "views/settings/settings_page.h"

namespace ovrin {

class SettingsCard;
class SettingsStore;

class GeneralPage final : public SettingsPage {
    Q_OBJECT

public:
    // The store outlives it.
    GeneralPage(ViewEnvironment& environment, SettingsStore& store);

private:
    SettingsCard* makeTranslationCard();
    SettingsCard* makeLookCard();
    SettingsCard* makeSystemCard();
    void fillBar();

    SettingsStore& store_;
    SettingsBinding binding_;
};

}  // namespace ovrin
