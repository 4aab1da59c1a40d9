#include "views/components/question_composer.h"

#include <QApplication>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "views/components/ov_text_editor.h"

namespace ovrin {
namespace {

class Composer : public testing::Test {
protected:
    Composer() {
        auto* layout = new QVBoxLayout(&window);
        layout->addStretch();
        layout->addWidget(composer);
        window.resize(400, 300);
        window.show();
        QObject::connect(composer, &QuestionComposer::sendRequested, [this] { ++sent; });
        QObject::connect(composer, &QuestionComposer::scrollKeyPressed, [this] { ++scrolled; });
        settle();
    }
    static void settle() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, key == Qt::Key_Return ? "\r" : "");
        QApplication::sendEvent(&composer->field(), &event);
        settle();
    }
    void type(const QString& text) {
        composer->field().insertPlainText(text);
        settle();
    }

    ViewEnvironment environment;
    QWidget window;
    QuestionComposer* composer = new QuestionComposer(environment, "发送");
    int sent = 0;
    int scrolled = 0;
};

TEST_F(Composer, ReturnSendsAndShiftReturnBeginsALine) {
    type("a");
    press(Qt::Key_Return, Qt::ShiftModifier);
    type("b");
    EXPECT_EQ(sent, 0);
    press(Qt::Key_Return);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(sent, 2);
    EXPECT_EQ(composer->field().toPlainText(), "a\nb");
    press(Qt::Key_PageUp);
    EXPECT_EQ(scrolled, 1);
}

TEST_F(Composer, GrowsWithItsLinesUpToFiveAndShrinksAgain) {
    const int one = composer->height();
    type("a\nb\nc");
    EXPECT_EQ(composer->height(), one + 2 * 21);
    type(QString(2000, 'x'));
    EXPECT_LE(composer->height(), one + 4 * 21);
    EXPECT_GE(composer->height(), one + 3 * 21);
    composer->field().replaceText("");
    settle();
    EXPECT_EQ(composer->height(), one);
}

}  // namespace
}  // namespace ovrin
