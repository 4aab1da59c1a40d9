// Base of the program's own widgets: knows the environment and repaints when it changes.
#pragma once

#include <QWidget>

#include "views/components/view_environment.h"

namespace ovrin {

class OVWidget : public QWidget {
    Q_OBJECT

public:
    explicit OVWidget(ViewEnvironment& environment, QWidget* parent = nullptr);

protected:
    ViewEnvironment& environment() const { return environment_; }
    QColor color(theme::ColorToken token) const { return environment_.color(token); }

private:
    ViewEnvironment& environment_;
};

}  // namespace ovrin
