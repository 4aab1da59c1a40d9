#include "views/toast/toast_panel.h"

#include <QLabel>
#include <QStringList>

#include <gtest/gtest.h>

#include "views/components/drawing.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {
namespace {

QString repeated(const QString& words, qsizetype size) {
    return words.repeated(size / words.size() + 1);
}

// What a service may send as its error.
constexpr qsizetype megabyte = 1 << 20;

QString shownText(const QWidget& window) {
    const auto labels = window.findChildren<QLabel*>();
    return labels.size() == 1 ? labels.front()->text() : "no label, or several";
}

TEST(ToastPanelTest, AShortMessageIsShownWhole) {
    ViewEnvironment environment;
    const ToastPanel toast(environment, " 识别结果\n已复制 ", OVIcon::check);
    EXPECT_EQ(shownText(toast), "识别结果 已复制");
}

TEST(ToastPanelTest, HasAShadowAroundItsFrameInTheDarkAppearance) {
    ViewEnvironment environment;
    const ToastPanel light(environment, "识别结果已复制", OVIcon::check);
    environment.setSettings({.appearance = theme::Appearance::dark});
    ToastPanel dark(environment, "识别结果已复制", OVIcon::check);
    EXPECT_EQ(dark.contentsRect().size(), QSize(260, 40));
    EXPECT_EQ(dark.pos() + dark.contentsRect().topLeft(), light.pos() + light.contentsRect().topLeft());
    const QImage picture = dark.grab().toImage();
    EXPECT_GT(qAlpha(picture.pixel(dark.width() / 2, dark.contentsRect().bottom() + 6)), 20);
}

TEST(ToastPanelTest, ALongOneHasTwoLinesHoweverLongItIs) {
    ViewEnvironment environment;
    for (const QString words : {"<p>404 Not Found</p> ", "请求失败", "https://h.example/v1/", "🙂", "e\u0301"}) {
        const ToastPanel toast(environment, repeated(words, megabyte).toStdString(), OVIcon::triangleAlert);
        const QString shown = shownText(toast);
        EXPECT_EQ(shown.count('\n'), 1) << shown.toStdString();
        EXPECT_TRUE(shown.endsWith("…")) << shown.toStdString();
        EXPECT_FALSE(shown.chopped(1).back().isHighSurrogate());
        EXPECT_FALSE(shown.chopped(1).endsWith('e')) << "an accent is cut from its letter";
        const auto* const label = toast.findChild<QLabel*>();
        EXPECT_LE(label->sizeHint().height(), toast.height());
        EXPECT_LE(label->sizeHint().width(), toast.width());
        EXPECT_LT(label->accessibleName().size(), 300);
    }
}

TEST(ErrorNoteTest, ShowsTheBeginningOfAWholePage) {
    ViewEnvironment environment;
    OVErrorNote note(environment);
    note.setMessage(repeated("<p>404 Not Found</p> ", megabyte).toStdString());
    const QString shown = note.findChild<OVStreamingText*>()->plainText();
    EXPECT_TRUE(shown.startsWith("<p>404 Not Found</p> <p>"));
    EXPECT_TRUE(shown.endsWith("…"));
    EXPECT_LT(shown.size(), 2000);
    note.setMessage("网络连接失败：超时。");
    EXPECT_EQ(note.findChild<OVStreamingText*>()->plainText(), "网络连接失败：超时。");
}

TEST(BeginningTest, EndsBetweenCharacters) {
    EXPECT_EQ(beginning("abc", 3), "abc");
    EXPECT_EQ(beginning("abcd", 3), "abc…");
    EXPECT_EQ(beginning("ab🙂c", 3), "ab…");
    EXPECT_EQ(beginning("ab🙂c", 4), "ab🙂…");
    EXPECT_EQ(beginning("abe\u0301c", 3), "ab…");
}

}  // namespace
}  // namespace ovrin
