#include "settings/settings_window_controller.h"

#include <utility>

namespace ovrin {

SettingsWindowController::SettingsWindowController(SettingsViewModel::Services services, MakeSettingsWindow makeWindow)
    : services_(std::move(services)), makeWindow_(std::move(makeWindow)) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show(std::optional<SettingsSection> section) {
    if (!viewModel_) viewModel_ = std::make_unique<SettingsViewModel>(services_);
    if (std::exchange(isOutdated_, false)) viewModel_->store().reload();
    viewModel_->refresh();
    if (section) viewModel_->select(*section);
    if (!window_) window_ = makeWindow_(*viewModel_);
    window_->present();
}

void SettingsWindowController::reload() {
    if (!window_) return;
    if (window_->isVisible()) return viewModel_->store().reload();
    isOutdated_ = true;
}

}  // namespace ovrin
