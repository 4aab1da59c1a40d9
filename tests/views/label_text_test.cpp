#include "views/result_panel/label_text.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

LabelText labelText(const QString& text, double fontSize, const QSizeF& room) {
    return {text, QFont(), fontSize, room};
}

TEST(LabelText, ShrinksToFitAndKeepsTheWholeText) {
    const QString text = QStringLiteral("some words of a label");
    const LabelText roomy = labelText(text, 16, {400, 40});
    EXPECT_EQ(roomy.lineCount(), 1);
    EXPECT_EQ(roomy.text(), text);
    const LabelText narrow = labelText(text, 16, {100, 34});
    EXPECT_EQ(narrow.text(), text);
    EXPECT_LE(narrow.height(), 34);
    EXPECT_LT(narrow.height() / narrow.lineCount(), roomy.height());
}

TEST(LabelText, HasItsSizeInABoxThatIsHardlyHigherThanItsCharacters) {
    EXPECT_DOUBLE_EQ(labelText("word", 9, {100, 10}).height(), labelText("word", 9, {100, 20}).height());
    EXPECT_LT(labelText("word", 9, {100, 7}).height(), labelText("word", 9, {100, 10}).height());
}

TEST(LabelText, CutsWhatDoesNotFitAfterAWholeLine) {
    const QString words = QStringLiteral("far more words than a label has room for, whichever size they are set in");
    const QString chinese = QStringLiteral("无论用多小的字号都放不进标签的文字无论用多小的字号都放不进标签的文字");
    for (const QString& text : {words, chinese}) {
        for (const double height : {4.0, 14.0, 22.0, 40.0}) {
            const LabelText label = labelText(text, 16, {60, height});
            EXPECT_TRUE(label.text().endsWith(u'…')) << label.text().toStdString();
            EXPECT_TRUE(text.startsWith(label.text().chopped(1))) << label.text().toStdString();
            EXPECT_TRUE(label.lineCount() == 1 || label.height() <= height) << height;
            EXPECT_LE(label.lineCount(), 3);
            EXPECT_GE(label.lineCount(), height == 40.0 ? 3 : 1);
        }
    }
}

}  // namespace
}  // namespace ovrin
