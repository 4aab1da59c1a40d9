#include "settings/settings_window_controller.h"

#include <utility>

namespace ovrin {

SettingsWindowController::SettingsWindowController(SettingsViewModel::Services services, MakeSettingsWindow makeWindow)
    : services_(std::move(services)), makeWindow_(std::move(makeWindow)) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show(std::optional<SettingsSection> section) {
    if (!viewModel_) viewModel_ = std::make_unique<SettingsViewModel>(services_);
    viewModel_->refresh();
    if (section) viewModel_->select(*section);
    if (!window_) window_ = makeWindow_(*viewModel_);
    window_->present();
}

void SettingsWindowController::reload() {
    if (viewModel_) viewModel_->store().reload();
}

}  // namespace ovrin
