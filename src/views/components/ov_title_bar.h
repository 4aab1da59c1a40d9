// The bar at the top of a window that draws its own frame: buttons that minimise, maximise and close it, and a ground
// that behaves as the title bar of any window: dragging moves the window, a double click maximises it, the right button
// opens the window's menu.
#pragma once

#include "views/components/ov_widget.h"

namespace ovrin {

class OVTitleBar final : public OVWidget {
    Q_OBJECT

public:
    static constexpr int barHeight = 44;      // points
    static constexpr int buttonsWidth = 110;  // points at the right end that the buttons take

    // Acts on the window that it is in.
    OVTitleBar(ViewEnvironment& environment, QWidget* window);

signals:
    void closeRequested();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Button;

    void nameMaximizeButton();
    void minimize();
    void toggleMaximized();

    Button* maximize_;
    QPoint pressed_;
    bool mayMove_ = false;
};

}  // namespace ovrin
