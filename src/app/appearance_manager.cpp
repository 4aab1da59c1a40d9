#include "app/appearance_manager.h"

namespace ovrin {

AppearanceManager::AppearanceManager(const Published<DesktopSettings>& desktop)
    : desktop_(desktop), settings_(desktop.value()) {
    changes_ = desktop_.onDidChange([this](const DesktopSettings&) { combine(); });
}

void AppearanceManager::apply(AppAppearanceMode mode) {
    mode_ = mode;
    combine();
}

void AppearanceManager::combine() {
    DesktopSettings combined = desktop_.value();
    if (mode_ == AppAppearanceMode::light) combined.appearance = theme::Appearance::light;
    if (mode_ == AppAppearanceMode::dark) combined.appearance = theme::Appearance::dark;
    settings_.set(combined);
}

}  // namespace ovrin
