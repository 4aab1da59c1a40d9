#include "views/history/qt_history_window.h"

#include "views/history/history_view.h"

namespace ovrin {

namespace {
constexpr QSize initialFrame{800, 550};
constexpr QSize smallestFrame{660, 460};
}  // namespace

QtHistoryWindow::QtHistoryWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                 HistoryViewModel& viewModel)
    : OVStandardWindow(environment, QStringLiteral("历史记录"), initialFrame, smallestFrame), viewModel_(viewModel) {
    auto* const view = new HistoryView(environment, viewModel, brandImage);
    setContent(view);
    view->focusSearch();
    connect(this, &OVPanelWindow::closeRequested, this, &QWidget::hide);
}

void QtHistoryWindow::showEvent(QShowEvent* event) {
    OVStandardWindow::showEvent(event);
    viewModel_.setVisible(true);
}

void QtHistoryWindow::hideEvent(QHideEvent* event) {
    OVStandardWindow::hideEvent(event);
    viewModel_.setVisible(false);
}

}  // namespace ovrin
