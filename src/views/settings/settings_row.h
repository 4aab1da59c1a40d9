// One setting: its title with a quiet line, and the control.
#pragma once

#include "views/components/ov_widget.h"
#include "views/settings/settings_line.h"

namespace ovrin {

class SettingsRow final : public OVWidget {
    Q_OBJECT

public:
    enum class Layout : std::uint8_t {
        choice,  // the control at the right, as wide as it is; the line below the title
        field    // the control in the column of fields, which takes the rest of the width; the line below it, reserved
    };

    // Takes ownership of the control. Where that has no accessible name it gets the title; the line becomes its
    // description. detail may be empty.
    SettingsRow(ViewEnvironment& environment, const QString& title, const QString& detail, QWidget* control,
                Layout layout = Layout::choice, QWidget* parent = nullptr);

    SettingsLine& line() { return *line_; }

private:
    SettingsLine* line_;
};

}  // namespace ovrin
