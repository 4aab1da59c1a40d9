#include "views/components/question_bubble.h"

#include <QImage>
#include <QPainter>
#include <string>

#include <gtest/gtest.h>

#include "views/components/drawing.h"

namespace ovrin {
namespace {

constexpr int panelWidth = 420;
constexpr int oneLine = 21 + 2 * 7;

// Where a bubble shows ink, in a column as wide as the smallest panel's.
QRect inkOf(ViewEnvironment& environment, QuestionBubble& bubble) {
    bubble.resize(panelWidth, bubble.heightForWidth(panelWidth));
    QImage picture(bubble.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    bubble.render(&picture, {}, {}, QWidget::DrawChildren);
    QRect ink;
    const int dark = qGray(environment.color(theme::ColorToken::ink).rgb()) + 60;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qGray(picture.pixel(x, y)) < dark) ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

TEST(QuestionBubble, ShowsShortQuestionsOnOneLine) {
    ViewEnvironment environment;
    for (const std::string question :
         {"我", "?", "i", "为何", "Hi", "这是什么", "这是什么？", "Why?", "a b c", "מה", "ما هذا؟"}) {
        QuestionBubble bubble(environment, question);
        EXPECT_EQ(bubble.sizeHint().height(), oneLine) << question;
        const QRect ink = inkOf(environment, bubble);
        EXPECT_EQ(bubble.height(), oneLine) << question;
        EXPECT_FALSE(ink.isEmpty()) << question;
        EXPECT_TRUE(bubble.text().geometry().adjusted(-1, 0, 1, 0).contains(ink)) << question;
    }
}

TEST(QuestionBubble, IsAsWideAsItsLongestLineUpToMostOfTheColumn) {
    ViewEnvironment environment;
    QuestionBubble lines(environment, "first line\n二\nthird");
    EXPECT_EQ(lines.heightForWidth(panelWidth), oneLine + 2 * 21);
    EXPECT_EQ(lines.text().sizeHint().height(), 3 * 21);

    std::string words = "word";
    for (int i = 0; i < 40; ++i) words += " word";
    QuestionBubble wrapped(environment, words);
    const QRect ink = inkOf(environment, wrapped);
    EXPECT_GT(wrapped.height(), 3 * 21);
    EXPECT_GT(ink.left(), panelWidth / 5);
    EXPECT_GT(ink.width(), panelWidth * 3 / 5);
}

}  // namespace
}  // namespace ovrin
