// The first start of the program, which opens the settings by itself.
#pragma once

#include <optional>

#include "settings/settings_section.h"

namespace ovrin {

class AppConfig;
class DefaultsStore;

// The page to show when this is the first start: 服务 while nothing names a model service, else 通用. None at every
// later start: the first one is noted before this returns, if the preferences can be written. Does not ask the
// keychain.
std::optional<SettingsSection> takeFirstLaunch(DefaultsStore& defaults, const AppConfig& config);

}  // namespace ovrin
