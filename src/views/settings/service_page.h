// The page 服务: which model service answers, and whether it does.
#pragma once

#include "settings/settings_view_model.h"
#include "views/settings/settings_binding.h"
#include "views/settings/settings_page.h"

class QHBoxLayout;

namespace ovrin {

class HeaderRows;
class OVButton;
class OVIconButton;
class OVTextField;
class SettingsCard;
class SettingsLine;

class ServicePage final : public SettingsPage {
    Q_OBJECT

public:
    // The view model outlives it.
    ServicePage(ViewEnvironment& environment, SettingsViewModel& viewModel);

protected:
    bool event(QEvent* event) override;

private:
    SettingsCard* makeConnectionCard();
    SettingsCard* makeHeaderCard();
    void addStandard(SettingsCard& card);
    void addKey(SettingsCard& card);
    void addLocalServices(SettingsCard& card);
    void showLocalServices(QHBoxLayout& slot, SettingsLine& line);
    void addModel(SettingsCard& card);
    void openModelMenu();
    void addTokens(SettingsCard& card);
    void addFailure();
    void fillBar();
    OVButton* addButton(const QString& title, bool isPrimary, const Published<bool>& isPossible,
                        std::function<void()> action);

    SettingsViewModel& viewModel_;
    SettingsStore& store_;
    OVTextField* url_ = nullptr;
    OVTextField* model_ = nullptr;
    OVIconButton* models_ = nullptr;  // offers what the service has beside the field
    QWidget* tokensError_ = nullptr;  // the last before the headers that Tab comes to
    SettingsBinding binding_;
};

}  // namespace ovrin
