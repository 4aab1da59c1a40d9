// A window of the program that is used like those of any other: with a title bar of its own over the top of its
// content, Control and W to close it, and never larger than the desktop has room for.
#pragma once

#include "views/components/ov_panel_window.h"

namespace ovrin {

class OVTitleBar;

class OVStandardWindow : public OVPanelWindow {
    Q_OBJECT

public:
    // Sizes are those of the frame, without the shadow. Where the work area of the screen is smaller than the minimum
    // size, it is the limit. Made centred and hidden.
    OVStandardWindow(ViewEnvironment& environment, const QString& title, QSize size, QSize minimumSize);

    // Once. The content fills the whole frame: its upper OVTitleBar::barHeight points lie below the bar, which takes
    // the pointer there. The keyboard's way leads through the content first and to the buttons of the bar last.
    void setContent(QWidget* content);

protected:
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void layOutAbove(const QRect& content) override;

private:
    void fitWorkArea();

    QSize minimumSize_;
    OVTitleBar* bar_ = nullptr;
    QMetaObject::Connection workAreaChanges_;
};

}  // namespace ovrin
