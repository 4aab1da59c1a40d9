#include "views/direct_ai/qt_direct_ai_panel.h"

#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "platform/linux/qt/input_focus_watch.h"
#include "views/direct_ai/direct_ai_view.h"

namespace ovrin {

namespace {

constexpr int growthMilliseconds = 380;

QSize toQSize(const Size& size) {
    return QSizeF(size.width, size.height).toSize();
}

OVPanelWindow::Shadow windowShadow(DirectAIPanel::Shadow shadow) {
    return shadow == DirectAIPanel::Shadow::inDarkAppearance ? OVPanelWindow::Shadow::inDarkAppearance
                                                             : OVPanelWindow::Shadow::never;
}

WindowRole roleOf(const DirectAIPanel::Form& form) {
    return form.kind == DirectAIPanel::Kind::bar ? WindowRole::chatBar : WindowRole::chat;
}

// Starts and ends slowly: the curve that desktops call "ease in, ease out".
QEasingCurve easeInEaseOut() {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment({0.42, 0}, {0.58, 1}, {1, 1});
    return curve;
}

}  // namespace

QtDirectAIPanel::QtDirectAIPanel(ViewEnvironment& environment, const Published<std::string>& brandImage,
                                 DirectAIViewModel& viewModel, const Form& form, Events events)
    : OVPanelWindow(environment, QStringLiteral("TalkBox"), toQSize(form.size), toQSize(form.minimumSize),
                    roleOf(form)),
      events_(std::move(events)),
      view_(new DirectAIView(environment, viewModel, brandImage)) {
    setLevel(Level::floating);
    setShadow(windowShadow(form.shadow));
    setContent(view_);
    connect(view_, &DirectAIView::closeRequested, this, &OVPanelWindow::closeRequested);
    connect(this, &OVPanelWindow::closeRequested, this, [this] { events_.requestClose(); });
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &OVPanelWindow::closeRequested);
    connect(new InputFocusWatch(*this), &InputFocusWatch::left, this, [this] { events_.resignedKey(); });
    bindAnimation();
}

void QtDirectAIPanel::bindAnimation() {
    growth_.setDuration(growthMilliseconds);
    growth_.setEasingCurve(easeInEaseOut());
    connect(&growth_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& frame) { setFrame(frame.toRect()); });
    connect(&growth_, &QAbstractAnimation::finished, this, [this] { setMinimumFrame(minimumFrame_); });
}

void QtDirectAIPanel::present() {
    OVPanelWindow::present();
    view_->focusField();
}

void QtDirectAIPanel::animateTo(const Form& form) {
    growth_.stop();
    setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    const bool isOtherWindow = giveRole(*this, roleOf(form));
    setShadow(windowShadow(form.shadow));
    const QRect from = frame();
    const QRect to = frameAround(from, toQSize(form.size));
    minimumFrame_ = toQSize(form.minimumSize);
    setMinimumFrame(minimumFrame_.boundedTo(from.size()));
    growth_.setStartValue(from);
    growth_.setEndValue(to);
    growth_.start();
    if (environment().settings().reducesMotion || isOtherWindow) growth_.setCurrentTime(growthMilliseconds);
    if (isOtherWindow) present();
}

QRect QtDirectAIPanel::frameAround(const QRect& old, QSize size) const {
    const QSize difference = (old.size() - size) / 2;
    QRect frame(old.topLeft() + QPoint(difference.width(), difference.height()), size);
    const QRect available = screen()->availableGeometry();
    frame.moveRight(std::min(frame.right(), available.right()));
    frame.moveBottom(std::min(frame.bottom(), available.bottom()));
    frame.moveLeft(std::max(frame.left(), available.left()));
    frame.moveTop(std::max(frame.top(), available.top()));
    return frame;
}

void QtDirectAIPanel::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) return emit closeRequested();
    OVPanelWindow::keyPressEvent(event);
}

}  // namespace ovrin
