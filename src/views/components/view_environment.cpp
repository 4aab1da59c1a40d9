#include "views/components/view_environment.h"

#include "views/components/drawing.h"

namespace ovrin {

void ViewEnvironment::setSettings(const Settings& settings) {
    if (settings == settings_) return;
    settings_ = settings;
    emit changed();
}

QColor ViewEnvironment::color(theme::ColorToken token) const {
    return toQColor(theme::color(token, settings_.appearance));
}

}  // namespace ovrin
