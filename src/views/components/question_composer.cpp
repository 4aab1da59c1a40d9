#include "views/components/question_composer.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

#include "views/components/drawing.h"
#include "views/components/ov_text_editor.h"
#include "views/components/send_button.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double cornerRadius = 20;
constexpr int horizontalPadding = 14;
constexpr int verticalPadding = 5;
constexpr int mostLines = 5;
}  // namespace

QuestionComposer::QuestionComposer(ViewEnvironment& environment, const QString& sendLabel, QWidget* parent)
    : OVWidget(environment, parent),
      field_(new OVTextEditor(environment, {})),
      send_(new SendButton(environment, sendLabel)) {
    field_->setReturnKey(OVTextEditor::ReturnKey::submits);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(horizontalPadding, verticalPadding, verticalPadding + 1, verticalPadding);
    row->setSpacing(8);
    row->addWidget(field_, 1, Qt::AlignVCenter);
    row->addWidget(send_, 0, Qt::AlignBottom);
    field_->installEventFilter(this);
    connect(field_, &QTextEdit::textChanged, this, &QuestionComposer::fitField);
    connect(field_, &OVTextEditor::submitted, this, &QuestionComposer::sendRequested);
    connect(send_, &QAbstractButton::clicked, this, &QuestionComposer::sendRequested);
    fitField();
}

void QuestionComposer::setCanSend(bool canSend) {
    send_->setEnabled(canSend);
}

void QuestionComposer::fitField() {
    const int margins = static_cast<int>(2 * field_->document()->documentMargin());
    const int line = static_cast<int>(field_->lineHeight());
    const int wanted = static_cast<int>(std::ceil(field_->document()->size().height()));
    const int most = mostLines * line + margins;
    // Scrolled to its last line it shows whole lines.
    field_->setFixedHeight(wanted > most ? most - margins : std::max(wanted, line + margins));
}

bool QuestionComposer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    if (event->type() == QEvent::Resize) fitField();
    if (event->type() != QEvent::KeyPress) return OVWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_PageUp && key->key() != Qt::Key_PageDown) return false;
    emit scrollKeyPressed(key);
    return true;
}

void QuestionComposer::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = std::min(cornerRadius, height() / 2.0);
    fillRounded(painter, rect(), radius, color(ColorToken::canvas));
    QColor line = color(field_->hasFocus() ? ColorToken::accent : ColorToken::ink);
    line.setAlphaF(field_->hasFocus() ? 0.75F : environment().isDark() ? 0.12F : 0.1F);
    painter.setPen(QPen(line, field_->hasFocus() ? 1.25 : 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

}  // namespace ovrin
