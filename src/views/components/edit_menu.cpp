#include "views/components/edit_menu.h"

#include <QLineEdit>
#include <QTextEdit>

#include "views/components/ov_menu.h"

namespace ovrin {

namespace {

// What of the menu makes sense at the moment.
struct Possible {
    bool undo = false;
    bool redo = false;
    bool copy = false;
    bool paste = false;
    bool selectAll = false;
};

template <typename Editor>
void showMenu(ViewEnvironment& environment, Editor& editor, const Possible& possible, const QPoint& place) {
    auto* menu = new OVMenu(environment, &editor);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [menu](const QString& text, bool isPossible, auto action) {
        menu->add(text, isPossible ? OVMenu::Entry::available : OVMenu::Entry::unavailable, action);
    };
    add(QStringLiteral("撤销"), possible.undo, [&editor] { editor.undo(); });
    add(QStringLiteral("重做"), possible.redo, [&editor] { editor.redo(); });
    menu->addSeparator();
    add(QStringLiteral("剪切"), possible.copy, [&editor] { editor.cut(); });
    add(QStringLiteral("复制"), possible.copy, [&editor] { editor.copy(); });
    add(QStringLiteral("粘贴"), possible.paste, [&editor] { editor.paste(); });
    menu->addSeparator();
    add(QStringLiteral("全选"), possible.selectAll, [&editor] { editor.selectAll(); });
    menu->popup(place);
}

}  // namespace

void showEditMenu(ViewEnvironment& environment, QLineEdit& field, const QPoint& place) {
    showMenu(environment, field,
             {.undo = field.isUndoAvailable(),
              .redo = field.isRedoAvailable(),
              .copy = field.hasSelectedText() && field.echoMode() == QLineEdit::Normal,
              .paste = true,
              .selectAll = !field.text().isEmpty()},
             place);
}

void showEditMenu(ViewEnvironment& environment, QTextEdit& editor, const QPoint& place) {
    showMenu(environment, editor,
             {.undo = editor.document()->isUndoAvailable(),
              .redo = editor.document()->isRedoAvailable(),
              .copy = editor.textCursor().hasSelection(),
              .paste = editor.canPaste(),
              .selectAll = !editor.document()->isEmpty()},
             place);
}

}  // namespace ovrin
