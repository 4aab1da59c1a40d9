#include "views/components/ov_text_editor.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextLayout>

#include "views/components/drawing.h"
#include "views/components/edit_menu.h"
#include "views/components/ov_scroll_bar.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double margin = 4;
constexpr double drop = 2;  // of a text in a line of the grid, against one that is drawn by itself
}  // namespace

OVTextEditor::OVTextEditor(ViewEnvironment& environment, const QString& placeholder, QWidget* parent)
    : QTextEdit(parent), environment_(environment), placeholder_(placeholder) {
    setFrameShape(QFrame::NoFrame);
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setFont(toQFont(theme::font::body));
    setAccessibleName(placeholder);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(margin);
    spaceLines();
    new OVScrollBar(environment, this);
    applyColors();
    connect(&environment_, &ViewEnvironment::changed, this, &OVTextEditor::applyColors);
}

// One grid for all lines: those with Chinese characters would otherwise be higher than the others.
void OVTextEditor::spaceLines() {
    QTextBlockFormat format;
    format.setLineHeight(lineHeight_, QTextBlockFormat::FixedHeight);
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.mergeBlockFormat(format);
    document()->clearUndoRedoStacks();
}

// As if it were typed: the toolkit would bring in paragraphs that know nothing of the grid.
void OVTextEditor::insertFromMimeData(const QMimeData* source) {
    textCursor().insertText(source->text());
    ensureCursorVisible();
}

void OVTextEditor::setTextStyle(const theme::FontStyle& style, double lineHeight) {
    setFont(toQFont(style));
    lineHeight_ = lineHeight;
    spaceLines();
}

void OVTextEditor::setPlaceholder(const QString& placeholder) {
    placeholder_ = placeholder;
    setAccessibleName(placeholder);
    viewport()->update();
}

void OVTextEditor::replaceText(const QString& text) {
    if (text == toPlainText()) return;
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.insertText(text);
    moveCursor(QTextCursor::End);
}

void OVTextEditor::applyColors() {
    setPalette(fieldPalette(palette(), environment_));
}

void OVTextEditor::paintEvent(QPaintEvent* event) {
    QTextEdit::paintEvent(event);
    // The toolkit's own placeholder knows nothing of the grid of lines.
    const bool isComposing = !textCursor().block().layout()->preeditAreaText().isEmpty();
    if (!document()->isEmpty() || isComposing) return;
    QPainter painter(viewport());
    painter.setFont(font());
    painter.setPen(environment_.color(ColorToken::ink3));
    painter.drawText(QRectF(viewport()->rect()).adjusted(margin, margin + drop, -margin, 0),
                     Qt::AlignTop | Qt::AlignLeft | Qt::TextWordWrap, placeholder_);
}

// A drag runs an event loop of its own inside this event, in which the window might be given other content. None starts
// from where nothing is selected: the press begins a new selection.
void OVTextEditor::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)) {
        QTextCursor cursor = textCursor();
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextEdit::mousePressEvent(event);
}

void OVTextEditor::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (returnKey_ == ReturnKey::submits && isReturn && !(event->modifiers() & Qt::ShiftModifier)) {
        emit submitted();
    } else {
        QTextEdit::keyPressEvent(event);
    }
}

void OVTextEditor::contextMenuEvent(QContextMenuEvent* event) {
    showEditMenu(environment_, *this, event->globalPos());
}

}  // namespace ovrin
