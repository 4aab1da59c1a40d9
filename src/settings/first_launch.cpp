#include "settings/first_launch.h"

#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/preferences.h"

namespace ovrin {

std::optional<SettingsSection> takeFirstLaunch(DefaultsStore& defaults, const AppConfig& config) {
    if (defaults.boolean(preference::didDismissWelcome)) return std::nullopt;
    try {
        defaults.setBoolean(preference::didDismissWelcome, true);
    } catch (const files::FileError&) {
        // A disk that takes nothing must not keep the settings from being seen: the next start welcomes again.
    }
    return config.namesModelService() ? SettingsSection::general : SettingsSection::service;
}

}  // namespace ovrin
