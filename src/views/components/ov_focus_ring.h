// The ring around a text that was reached by the keyboard. It lies above what is around the text and moves with it, so
// that the text needs no room for it.
#pragma once

#include <QFocusFrame>

#include "views/components/view_environment.h"

namespace ovrin {

class OVFocusRing final : public QFocusFrame {
    Q_OBJECT

public:
    // In points: how far outside of what it goes around it is, and how round.
    struct Shape {
        int horizontalMargin = 6;
        int verticalMargin = 4;
        double radius = 6;
    };

    OVFocusRing(ViewEnvironment& environment, QWidget& around, const Shape& shape);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ViewEnvironment& environment_;
    double radius_;
};

}  // namespace ovrin
