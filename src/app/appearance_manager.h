// Applies the user's choice of light, dark or the desktop's appearance to the running program.
#pragma once

#include "base/published.h"
#include "platform/desktop_settings.h"
#include "theme/app_appearance_mode.h"

namespace ovrin {

// Main thread.
class AppearanceManager {
public:
    // What the desktop wants; outlives the object, which follows it from the start.
    explicit AppearanceManager(const Published<DesktopSettings>& desktop);
    AppearanceManager(const AppearanceManager&) = delete;
    AppearanceManager& operator=(const AppearanceManager&) = delete;

    void apply(AppAppearanceMode mode);

    // The desktop's settings with the appearance that the program has: what views are drawn by.
    const Published<DesktopSettings>& settings() const { return settings_; }

private:
    void combine();

    const Published<DesktopSettings>& desktop_;
    AppAppearanceMode mode_ = AppAppearanceMode::system;
    Published<DesktopSettings> settings_;
    Subscription changes_;
};

}  // namespace ovrin
