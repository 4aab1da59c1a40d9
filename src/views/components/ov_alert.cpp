#include "views/components/ov_alert.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <utility>

#include "views/components/ov_animated_icon.h"
#include "views/components/ov_button.h"
#include "views/components/ov_label.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double cornerRadius = 14;
constexpr int alertWidth = 380;
constexpr int padding = 20;
constexpr double iconSize = 18;
}  // namespace

OVAlert::OVAlert(ViewEnvironment& environment, const Words& words, QWidget& owner)
    : OVFloatingWindow(environment, cornerRadius, WindowRole::alert),
      owner_(owner.window()),
      buttons_(new QHBoxLayout),
      dismissButton_(new OVButton(environment, words.dismissButton, OVButton::Kind::primary)) {
    setParent(owner_, windowFlags());
    setWindowModality(Qt::WindowModal);
    setWindowTitle(words.message);
    setFixedWidth(alertWidth);

    auto* text = new QVBoxLayout;
    text->setSpacing(6);
    text->addWidget(
        new OVLabel(environment, words.message, theme::font::bodyMedium, ColorToken::ink, OVLabel::Lines::wrapped));
    if (!words.informativeText.isEmpty()) {
        text->addWidget(new OVLabel(environment, words.informativeText, theme::font::caption, ColorToken::ink2,
                                    OVLabel::Lines::wrapped));
    }
    auto* top = new QHBoxLayout;
    top->setSpacing(12);
    top->addWidget(new OVAnimatedIcon(environment, OVIcon::triangleAlert, iconSize, ColorToken::orange), 0,
                   Qt::AlignTop);
    top->addLayout(text, 1);

    buttons_->setSpacing(8);
    buttons_->addStretch();
    buttons_->addWidget(dismissButton_);
    connect(dismissButton_, &QAbstractButton::clicked, this, &OVAlert::dismiss);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(padding, padding, padding, padding - 4);
    page->setSpacing(18);
    page->addLayout(top);
    page->addLayout(buttons_);
}

void OVAlert::addChoice(const QString& title, std::function<void()> action, Choice choice) {
    const auto kind = choice == Choice::destructive ? OVButton::Kind::danger : OVButton::Kind::secondary;
    auto* button = new OVButton(environment(), title, kind);
    buttons_->insertWidget(buttons_->count() - 1, button);
    connect(button, &QAbstractButton::clicked, this, [this, action = std::move(action)] {
        leave();
        action();
    });
}

void OVAlert::present() {
    layout()->activate();
    resize(alertWidth, layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(alertWidth) : sizeHint().height());
    if (owner_) move(owner_->geometry().center() - rect().center());
    show();
    activateWindow();
    dismissButton_->setFocus();
}

void OVAlert::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return dismiss();
    OVFloatingWindow::keyPressEvent(event);
}

void OVAlert::closeEvent(QCloseEvent* event) {
    event->ignore();
    dismiss();
}

void OVAlert::leave() {
    hide();
    deleteLater();
    if (owner_) owner_->activateWindow();
}

void OVAlert::dismiss() {
    if (!isVisible()) return;
    leave();
    emit dismissed();
}

}  // namespace ovrin
