#include "views/input_translate/qt_input_translate_window.h"

#include <QShortcut>
#include <utility>

#include "views/input_translate/input_translate_view.h"

namespace ovrin {

namespace {
constexpr QSize initialFrame{760, 490};
constexpr QSize smallestFrame{620, 400};
}  // namespace

QtInputTranslateWindow::QtInputTranslateWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                               InputTranslateViewModel& viewModel, std::function<void()> requestClose)
    : OVPanelWindow(environment, QStringLiteral("输入翻译"), initialFrame, smallestFrame) {
    auto* view = new InputTranslateView(environment, viewModel, brandImage);
    connect(view, &InputTranslateView::closeRequested, this, &OVPanelWindow::closeRequested);
    setContent(view);
    view->focusInput();  // where the keyboard goes first; later it stays where the user had it
    // Queued: what follows may destroy the window, from whose event this comes.
    connect(this, &OVPanelWindow::closeRequested, this, std::move(requestClose), Qt::QueuedConnection);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &OVPanelWindow::closeRequested);
}

void QtInputTranslateWindow::present() {
    OVPanelWindow::present();
}

}  // namespace ovrin
