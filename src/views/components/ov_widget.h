// Base of the program's own widgets: knows the environment and repaints when it changes. Assistive technology hears of
// those that are windows as windows, and of others by the role that they give themselves.
#pragma once

#include <QAccessible>
#include <QWidget>

#include "views/components/view_environment.h"

namespace ovrin {

class OVWidget : public QWidget {
    Q_OBJECT

public:
    explicit OVWidget(ViewEnvironment& environment, QWidget* parent = nullptr);

    // None until it has given itself one.
    QAccessible::Role accessibleRole() const { return accessibleRole_; }

protected:
    ViewEnvironment& environment() const { return environment_; }
    QColor color(theme::ColorToken token) const { return environment_.color(token); }
    void setAccessibleRole(QAccessible::Role role) { accessibleRole_ = role; }

private:
    ViewEnvironment& environment_;
    QAccessible::Role accessibleRole_ = QAccessible::NoRole;
};

}  // namespace ovrin
