// The user's choice of the program's icon, and the picture that stands for it now.
#pragma once

#include <string>

#include "base/published.h"
#include "platform/application_icon.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "theme/entrance_icon_style.h"

namespace ovrin {

// Main thread. What it is given outlives it.
class AppIconManager {
public:
    // Shows the stored choice at once. A picture that is missing leaves what is shown.
    AppIconManager(const AppConfig& config, DefaultsStore& defaults, ApplicationIcon& icon);
    AppIconManager(const AppIconManager&) = delete;
    AppIconManager& operator=(const AppIconManager&) = delete;

    const Published<EntranceIconStyle>& style() const { return style_; }
    // The name of the asset, such as "EntranceIconLight"; empty: the program's own icon.
    const Published<std::string>& image() const { return image_; }

    // Reads the stored choice anew.
    void applySavedIcon();

    // Stores the choice, unless it is the current one, and shows it. Throws files::FileError; nothing has changed then.
    void select(EntranceIconStyle style);

private:
    void apply(EntranceIconStyle style);

    const AppConfig& config_;
    DefaultsStore& defaults_;
    ApplicationIcon& icon_;
    Published<EntranceIconStyle> style_;
    Published<std::string> image_;
};

}  // namespace ovrin
