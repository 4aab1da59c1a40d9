// One row of the command palette: icon, title, what the command does, shortcut. The list draws the highlight below the
// selected one and takes the mouse for all; to assistive technology a row is an item that can be pressed.
#pragma once

#include "shortcuts/command_item.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class CommandRow final : public OVWidget {
    Q_OBJECT

public:
    static constexpr int height = 46;  // points

    CommandRow(ViewEnvironment& environment, CommandItem item, QWidget* parent);

    const CommandItem& item() const { return item_; }
    // Everything it says in one line.
    QString words() const;

    bool isSelected() const { return isSelected_; }
    void setSelected(bool isSelected);

signals:
    // By assistive technology.
    void pressed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int drawShortcut(QPainter& painter) const;

    CommandItem item_;
    bool isSelected_ = false;
};

}  // namespace ovrin
