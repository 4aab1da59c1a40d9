#include "app/app_icon_manager.h"

#include "storage/preferences.h"

namespace ovrin {

AppIconManager::AppIconManager(const AppConfig& config, DefaultsStore& defaults, ApplicationIcon& icon)
    : config_(config), defaults_(defaults), icon_(icon) {
    applySavedIcon();
}

void AppIconManager::applySavedIcon() {
    apply(config_.entranceIconStyle());
}

void AppIconManager::select(EntranceIconStyle style) {
    if (style == style_.value()) return;
    defaults_.setString(preference::entranceIconStyle, rawValue(style));
    apply(style);
}

void AppIconManager::apply(EntranceIconStyle style) {
    style_.set(style);
    const std::string asset(imageAsset(style));
    if (!icon_.hasImage(asset)) return;
    image_.set(asset);
    icon_.setImage(asset);
}

}  // namespace ovrin
