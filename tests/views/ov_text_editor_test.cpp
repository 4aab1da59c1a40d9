#include "views/components/ov_text_editor.h"

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QTextBlock>
#include <QTextDocument>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

// How many of its lines are on the grid.
int linesOnGrid(const OVTextEditor& editor) {
    int count = 0;
    for (QTextBlock block = editor.document()->begin(); block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        if (format.lineHeightType() == QTextBlockFormat::FixedHeight && format.lineHeight() == 21) ++count;
    }
    return count;
}

TEST(TextEditor, KeepsItsGridOfLinesWhereverTheTextComesFrom) {
    ViewEnvironment environment;
    OVTextEditor editor(environment, {});
    QGuiApplication::clipboard()->setText("一\ntwo\n三\n");
    editor.paste();
    EXPECT_EQ(editor.toPlainText(), "一\ntwo\n三\n");
    EXPECT_EQ(linesOnGrid(editor), 4);
    editor.replaceText("four\n五");
    EXPECT_EQ(linesOnGrid(editor), 2);
    editor.selectAll();
    editor.paste();
    EXPECT_EQ(linesOnGrid(editor), 4);

    // What was replaced or pasted over comes back.
    editor.undo();
    EXPECT_EQ(editor.toPlainText(), "four\n五");
    editor.undo();
    EXPECT_EQ(editor.toPlainText(), "一\ntwo\n三\n");
    EXPECT_EQ(linesOnGrid(editor), 4);
}

TEST(TextEditor, LeavesTheCaretBehindAReplacedText) {
    ViewEnvironment environment;
    OVTextEditor editor(environment, {});
    editor.replaceText(QStringLiteral("a draft"));
    editor.insertPlainText(QStringLiteral(" goes on"));
    EXPECT_EQ(editor.toPlainText(), "a draft goes on");
    editor.undo();
    editor.undo();
    EXPECT_EQ(editor.toPlainText(), "");
}

// The event loop of a drag would let the editor be destroyed inside of its own event.
TEST(TextEditor, StartsASelectionWhereOthersDragTheOldOne) {
    ViewEnvironment environment;
    OVTextEditor editor(environment, {});
    editor.resize(200, 60);
    editor.show();
    editor.replaceText(QStringLiteral("some words to drag"));
    editor.selectAll();
    const auto mouse = [&editor](QEvent::Type type, const QPoint& place) {
        QMouseEvent event(type, place, editor.viewport()->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(editor.viewport(), &event);
    };
    mouse(QEvent::MouseButtonPress, {30, 12});
    ASSERT_FALSE(editor.textCursor().hasSelection());
    mouse(QEvent::MouseMove, {199, 12});
    EXPECT_TRUE(editor.toPlainText().endsWith(editor.textCursor().selectedText()));
    EXPECT_TRUE(editor.textCursor().hasSelection());
}

}  // namespace
}  // namespace ovrin
