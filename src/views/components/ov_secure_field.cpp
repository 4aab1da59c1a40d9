#include "views/components/ov_secure_field.h"

#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QTimer>

#include "views/components/ov_button.h"
#include "views/components/ov_text_field.h"

namespace ovrin {

namespace {
constexpr int eyeMargin = 3;  // between the button and the edge of the field
}

OVSecureField::OVSecureField(ViewEnvironment& environment, const QString& placeholder, const QString& showLabel,
                             QWidget* parent)
    : OVWidget(environment, parent),
      field_(new OVTextField(environment, placeholder)),
      eye_(new OVIconButton(environment, OVIcon::eye, showLabel, this)) {
    eye_->setCheckable(true);
    field_->setEchoMode(QLineEdit::Password);
    field_->setRightInset(eye_->width() + 2 * eyeMargin);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(field_);
    eye_->raise();
    setTabOrder(field_, eye_);
    setFocusProxy(field_);
    field_->installEventFilter(this);
    eye_->installEventFilter(this);
    connect(eye_, &QAbstractButton::clicked, this, [this](bool isChecked) {
        show(isChecked);
        // What is shown by the pointer is left by going elsewhere, which takes being there.
        if (isChecked && !eye_->hasFocus()) field_->setFocus();
    });
}

bool OVSecureField::isShown() const {
    return field_->echoMode() == QLineEdit::Normal;
}

void OVSecureField::show(bool isShown) {
    eye_->setChecked(isShown);
    eye_->setOVIcon(isShown ? OVIcon::eyeOff : OVIcon::eye);
    if (isShown == this->isShown()) return;
    if (!isShown) {
        // A part that was selected while it was shown is still offered to every program.
        QClipboard* const clipboard = QGuiApplication::clipboard();
        const bool isOurs = clipboard->supportsSelection() && clipboard->ownsSelection();
        if (isOurs && field_->text().contains(clipboard->text(QClipboard::Selection))) {
            clipboard->clear(QClipboard::Selection);
        }
        field_->deselect();
    }
    field_->setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
}

void OVSecureField::hideUnlessFocused() {
    if (!field_->hasFocus() && !eye_->hasFocus()) show(false);
}

void OVSecureField::resizeEvent(QResizeEvent* /*event*/) {
    eye_->move(width() - eye_->width() - eyeMargin, (height() - eye_->height()) / 2);
}

void OVSecureField::hideEvent(QHideEvent* /*event*/) {
    show(false);
}

bool OVSecureField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        // A menu of the field itself is no leaving. Where the keyboard goes is known after this event.
        const bool isMenu = static_cast<QFocusEvent*>(event)->reason() == Qt::PopupFocusReason;
        if (!isMenu) QTimer::singleShot(0, this, &OVSecureField::hideUnlessFocused);
    }
    return OVWidget::eventFilter(watched, event);
}

}  // namespace ovrin
