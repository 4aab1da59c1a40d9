// How far a long step has come: a thin bar that fills with the accent colour.
#pragma once

#include <QProgressBar>

#include "views/components/view_environment.h"

namespace ovrin {

class OVProgressBar final : public QProgressBar {
    Q_OBJECT

public:
    // label is its name for assistive technology. From 0 to 1000.
    OVProgressBar(ViewEnvironment& environment, const QString& label, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {200, 6}; }
    QSize minimumSizeHint() const override { return {40, 6}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ViewEnvironment& environment_;
};

}  // namespace ovrin
