// What every view needs to know of its surroundings: the effective appearance and the user's wishes about motion and
// transparency. Views redraw when changed() is emitted. One per application, main thread.
#pragma once

#include <QColor>
#include <QObject>

#include "platform/desktop_settings.h"
#include "theme/color_token.h"

namespace ovrin {

class ViewEnvironment final : public QObject {
    Q_OBJECT

public:
    using Settings = DesktopSettings;

    const Settings& settings() const { return settings_; }
    bool isDark() const { return settings_.appearance == theme::Appearance::dark; }
    void setSettings(const Settings& settings);

    QColor color(theme::ColorToken token) const;

signals:
    void changed();

private:
    Settings settings_;
};

}  // namespace ovrin
