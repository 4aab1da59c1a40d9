#include "views/updates/qt_update_window.h"

#include <utility>

#include "views/components/ov_title_bar.h"
#include "views/updates/update_view.h"

namespace ovrin {

namespace {
constexpr QSize initialFrame{540, 440};
constexpr QSize smallestFrame{420, 320};
}  // namespace

QtUpdateWindow::QtUpdateWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                               UpdateViewModel& viewModel, std::function<void()> requestClose)
    : OVStandardWindow(environment, QStringLiteral("软件更新"), initialFrame, smallestFrame) {
    auto* view = new UpdateView(environment, viewModel, brandImage, OVTitleBar::barHeight);
    connect(view, &UpdateView::closeRequested, this, &OVPanelWindow::closeRequested);
    setContent(view);
    // Queued: what follows may destroy the window, from whose event this comes.
    connect(this, &OVPanelWindow::closeRequested, this, std::move(requestClose), Qt::QueuedConnection);
}

void QtUpdateWindow::present() {
    OVStandardWindow::present();
}

}  // namespace ovrin
