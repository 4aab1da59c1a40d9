#include "views/input_translate/input_pane.h"

#include <QEvent>
#include <QPainter>

#include "base/watch.h"
#include "views/components/drawing.h"
#include "views/components/ov_text_editor.h"
#include "windows/input_translate_view_model.h"

namespace ovrin {

InputPane::InputPane(ViewEnvironment& environment, InputTranslateViewModel& viewModel, QWidget* parent)
    : TextPane(environment, QStringLiteral("输入"), parent),
      editor_(new OVTextEditor(environment, QStringLiteral("粘贴或输入需要翻译的内容…"))) {
    editor_->setAccessibleName(QStringLiteral("输入"));
    const int textMargin = static_cast<int>(editor_->document()->documentMargin());
    editor_->setRightInset(padding - scrollBarMargin - textMargin);
    setContent(editor_, padding - textMargin);
    editor_->installEventFilter(this);
    connect(editor_, &QTextEdit::textChanged, this,
            [this, &viewModel] { viewModel.setInputText(editor_->toPlainText().toStdString()); });
    changes_ = watch(viewModel.inputText(), [this](const std::string& text) { editor_->replaceText(toQString(text)); });
}

void InputPane::focusEditor() {
    editor_->setFocus(Qt::OtherFocusReason);
}

bool InputPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    return TextPane::eventFilter(watched, event);
}

void InputPane::paintEvent(QPaintEvent* event) {
    TextPane::paintEvent(event);
    if (!editor_->hasFocus()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor line = color(theme::ColorToken::accent);
    line.setAlphaF(0.75F);
    painter.setPen(QPen(line, 1.25));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.625, 0.625, -0.625, -0.625), cornerRadius - 0.625,
                            cornerRadius - 0.625);
}

}  // namespace ovrin
