#include "views/components/ov_standard_window.h"

#include <QMouseEvent>
#include <QScreen>
#include <QShortcut>

#include "views/components/ov_title_bar.h"

namespace ovrin {

OVStandardWindow::OVStandardWindow(ViewEnvironment& environment, const QString& title, QSize size, QSize minimumSize)
    : OVPanelWindow(environment, title, size, minimumSize), minimumSize_(minimumSize) {
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &OVPanelWindow::closeRequested);
}

void OVStandardWindow::setContent(QWidget* content) {
    OVPanelWindow::setContent(content);
    bar_ = new OVTitleBar(environment(), this);  // after the content, so that the keyboard comes to it last
    connect(bar_, &OVTitleBar::closeRequested, this, &OVPanelWindow::closeRequested);
    layOutAbove(content->geometry());
    bar_->show();
}

void OVStandardWindow::layOutAbove(const QRect& content) {
    if (bar_ == nullptr) return;
    bar_->setGeometry(content.left(), content.top(), content.width(), OVTitleBar::barHeight);
    bar_->raise();
}

void OVStandardWindow::showEvent(QShowEvent* event) {
    disconnect(workAreaChanges_);
    workAreaChanges_ =
        connect(screen(), &QScreen::availableGeometryChanged, this, [this](const QRect& /*area*/) { fitWorkArea(); });
    fitWorkArea();
    OVPanelWindow::showEvent(event);
}

void OVStandardWindow::fitWorkArea() {
    const QRect area = screen()->availableGeometry();
    setMinimumFrame(minimumSize_.boundedTo(area.size()));
    if (isMaximized() || isFullScreen()) return;
    const QRect before = frame();
    QRect fitting(before.topLeft(), before.size().boundedTo(area.size()));
    if (fitting.size() == before.size()) return;
    fitting.moveCenter(area.center());
    setFrame(fitting);
}

// Only the bar moves it: what lies around the controls of a page is no handle.
void OVStandardWindow::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void OVStandardWindow::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
}

}  // namespace ovrin
