// A frameless window with rounded corners over the page colour that floats above others: toast, palette, card.
#pragma once

#include "platform/linux/qt/window_role.h"
#include "views/components/ov_window_background.h"

namespace ovrin {

class OVFloatingWindow : public OVWindowBackground {
    Q_OBJECT

public:
    // cornerRadius in points. Where nothing composites the screen the window is cut to its shape instead of blended.
    OVFloatingWindow(ViewEnvironment& environment, double cornerRadius, WindowRole role);

    // Where the upper-left corner of its frame goes, on the screen.
    void moveFrame(const QPoint& corner);

protected:
    // The frame has this size, in points, from now on. In the dark appearance and where something composites the screen
    // a shadow lies around it, in a margin of the window that pointer and keyboard don't notice.
    void setFrameSize(const QSize& size);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void applyShape();
    void adaptShadow();
    void tellMargin();

    double cornerRadius_;
    QSize frameSize_;
    int shadowMargin_ = 0;
};

}  // namespace ovrin
