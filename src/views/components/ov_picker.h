// A control that shows which of some options is chosen, and opens a menu of them with a check mark beside that one.
#pragma once

#include <QString>
#include <vector>

#include "views/components/ov_button.h"

namespace ovrin {

class OVPicker final : public OVButtonBase {
    Q_OBJECT

public:
    struct Option {
        QString value;
        QString title;
    };

    // label is its name for assistive technology and its tooltip.
    OVPicker(ViewEnvironment& environment, const QString& label, std::vector<Option> options,
             QWidget* parent = nullptr);

    void setOptions(std::vector<Option> options);
    // What is shown as chosen. It has a check mark in the menu when its value is that of an option.
    void setCurrent(const Option& current);

    QSize sizeHint() const override;

signals:
    // The user has chosen this option, perhaps the current one again.
    void picked(const QString& value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void openMenu();

    QString label_;
    std::vector<Option> options_;
    Option current_;
};

}  // namespace ovrin
