// A titled card of settings, one below the other, apart from each other by a line.
#pragma once

#include "views/components/ov_widget.h"

class QVBoxLayout;

namespace ovrin {

class SettingsCard final : public OVWidget {
    Q_OBJECT

public:
    enum class Rows : std::uint8_t {
        separated,  // by lines
        together    // as the fields of a form
    };

    SettingsCard(ViewEnvironment& environment, const QString& title, Rows rows = Rows::separated,
                 QWidget* parent = nullptr);

    // Takes ownership.
    void addRow(QWidget* row);

private:
    Rows separation_;
    QVBoxLayout* rows_;
};

}  // namespace ovrin
