// A prompt with its title, in an editor of a few lines; longer ones scroll in it.
#pragma once

#include "views/components/ov_widget.h"
#include "views/settings/settings_line.h"

namespace ovrin {

class OVTextEditor;

class PromptEditor final : public OVWidget {
    Q_OBJECT

public:
    PromptEditor(ViewEnvironment& environment, const QString& title, const QString& placeholder,
                 QWidget* parent = nullptr);

    OVTextEditor& editor() { return *editor_; }
    SettingsLine& line() { return *line_; }

private:
    OVTextEditor* editor_;
    SettingsLine* line_;
};

}  // namespace ovrin
