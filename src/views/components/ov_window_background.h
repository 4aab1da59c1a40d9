// The background of a whole window: the page colour, opaque or over the desktop's blur, with rounded corners where the
// window has no frame of its own.
#pragma once

#include "views/components/ov_widget.h"

class QPainter;

namespace ovrin {

class OVWindowBackground : public OVWidget {
    Q_OBJECT

public:
    // cornerRadius in points; 0 fills the rectangle (the window manager draws the frame). With a radius the window must
    // be frameless and translucent.
    OVWindowBackground(ViewEnvironment& environment, double cornerRadius, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double cornerRadius_;
};

// The same for windows of other kinds.
void drawWindowBackground(QPainter& painter, const QRectF& rectangle, double cornerRadius,
                          const ViewEnvironment& environment);

}  // namespace ovrin
