#include "views/components/ov_error_note.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "views/components/ov_alert.h"
#include "views/components/ov_button.h"
#include "views/components/ov_label.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {
namespace {

const QString unbrokenWord(156, '*');

void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent down(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &down);
}

TEST(WrappedWords, AWordWiderThanItsWindowPushesNothingOutOfIt) {
    ViewEnvironment environment;
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* note = new OVErrorNote(environment);
    auto* label =
        new OVLabel(environment, unbrokenWord, theme::font::body, theme::ColorToken::ink, OVLabel::Lines::wrapped);
    column->addWidget(note);
    column->addWidget(label);
    note->setMessage(unbrokenWord.toStdString());
    window.resize(240, 400);
    window.show();
    QApplication::processEvents();
    EXPECT_EQ(window.width(), 240);
    const int line = QFontMetrics(label->font()).height();
    for (const QWidget* words : {static_cast<QWidget*>(note), static_cast<QWidget*>(label)}) {
        EXPECT_TRUE(window.rect().contains(words->geometry()));
        EXPECT_GE(words->height(), 4 * line);
    }
    EXPECT_LT(label->heightForWidth(QWIDGETSIZE_MAX), 2 * line);
}

TEST(ErrorNoteTest, IsReachedByTabSelectedAndCopied) {
    ViewEnvironment environment;
    OVErrorNote note(environment);
    note.setMessage("请求失败：HTTP 401");
    auto* words = note.findChild<OVStreamingText*>();
    EXPECT_TRUE(words->focusPolicy() & Qt::TabFocus);
    press(*words, Qt::Key_A, Qt::ControlModifier);
    press(*words, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "请求失败：HTTP 401");
}

TEST(AlertTest, ReturnPressesTheFocusedButton) {
    ViewEnvironment environment;
    QWidget owner;
    for (const bool choosesOther : {false, true}) {
        auto* alert = new OVAlert(environment, {"清除？", "无法恢复", "取消"}, owner);
        QStringList heard;
        alert->addChoice("清除", [&] { heard.push_back("choice"); });
        QObject::connect(alert, &OVAlert::dismissed, [&] { heard.push_back("dismissed"); });
        alert->present();
        EXPECT_EQ(static_cast<OVButton*>(alert->focusWidget())->text(), "取消");
        for (auto* button : alert->findChildren<OVButton*>()) {
            if (choosesOther && button->text() == "清除") button->setFocus();
        }
        press(*alert->focusWidget(), Qt::Key_Return);
        EXPECT_EQ(heard, QStringList{choosesOther ? "choice" : "dismissed"});
        QApplication::sendPostedEvents(alert, QEvent::DeferredDelete);
    }
}

}  // namespace
}  // namespace ovrin
