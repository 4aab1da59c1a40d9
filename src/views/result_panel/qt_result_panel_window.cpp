#include "views/result_panel/qt_result_panel_window.h"

#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QShortcut>
#include <utility>

#include "views/result_panel/result_panel_view.h"

namespace ovrin {

namespace {

constexpr QSize initialFrame{460, 460};
constexpr QSize smallestFrame{420, 400};
constexpr int fadeMilliseconds = 140;

void fadeIn(QWidget& widget) {
    auto* effect = new QGraphicsOpacityEffect(&widget);
    widget.setGraphicsEffect(effect);
    auto* fade = new QPropertyAnimation(effect, "opacity", effect);
    fade->setDuration(fadeMilliseconds);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    // Without the effect the content is drawn faster; it goes once the animation has let go of it.
    QObject::connect(
        fade, &QAbstractAnimation::finished, &widget, [&widget] { widget.setGraphicsEffect(nullptr); },
        Qt::QueuedConnection);
    fade->start();
}

}  // namespace

QtResultPanelWindow::QtResultPanelWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                         std::function<void()> requestClose)
    : OVPanelWindow(environment, QStringLiteral("Ovrin"), initialFrame, smallestFrame),
      environment_(environment),
      brandImage_(brandImage) {
    // Queued: what follows may destroy the window, from whose event this comes.
    connect(this, &OVPanelWindow::closeRequested, this, std::move(requestClose), Qt::QueuedConnection);
    for (const QKeySequence::StandardKey key : {QKeySequence::Close, QKeySequence::Cancel}) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, &OVPanelWindow::closeRequested);
    }
}

void QtResultPanelWindow::setContent(std::shared_ptr<ResultPanelViewModel> viewModel, Entrance entrance) {
    view_ = new ResultPanelView(environment_, *viewModel, brandImage_);
    connect(view_, &QObject::destroyed, [kept = std::move(viewModel)] {});  // until then
    connect(view_, &ResultPanelView::closeRequested, this, &OVPanelWindow::closeRequested);
    OVPanelWindow::setContent(view_);
    if (entrance == Entrance::fadesIn) fadeIn(*view_);
}

void QtResultPanelWindow::setLevel(ResultPanelWindow::Level level) {
    OVPanelWindow::setLevel(level == ResultPanelWindow::Level::floating ? OVPanelWindow::Level::floating
                                                                        : OVPanelWindow::Level::normal);
}

void QtResultPanelWindow::present() {
    OVPanelWindow::present();
    view_->focusComposer();
}

}  // namespace ovrin
