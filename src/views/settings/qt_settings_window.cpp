#include "views/settings/qt_settings_window.h"

#include "views/settings/settings_page.h"
#include "views/settings/settings_view.h"

namespace ovrin {

namespace {
constexpr QSize initialFrame{820, 660};
constexpr QSize smallestFrame{760, 620};
}  // namespace

QtSettingsWindow::QtSettingsWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                   SettingsViewModel& viewModel, SettingsPage* shortcutsPage)
    : OVStandardWindow(environment, QStringLiteral("Ovrin 设置"), initialFrame, smallestFrame) {
    view_ = new SettingsView(environment, brandImage, viewModel, shortcutsPage);
    setContent(view_);
    view_->focusSidebar();  // where the keyboard goes first; later it stays where the user had it
    connect(this, &OVPanelWindow::closeRequested, this, &QWidget::hide);
}

void QtSettingsWindow::present() {
    OVPanelWindow::present();
}

}  // namespace ovrin
