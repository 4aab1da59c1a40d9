#include "views/components/conversation_turns.h"

#include <QApplication>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "views/components/ov_button.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/question_bubble.h"
#include "views/components/reading_column.h"

namespace ovrin {
namespace {

using Turn = ConversationTurns::Turn;

class Conversation : public testing::Test {
protected:
    Conversation() {
        area.resize(580, 460);
        area.setContent(column);
        column->column().addWidget(turns);
        area.show();
    }
    void show(const std::vector<Turn>& shown) {
        turns->show(shown);
        QApplication::processEvents();
    }
    std::vector<ConversationTurnView*> views() const { return sorted(turns->findChildren<ConversationTurnView*>()); }

    const Uuid first = Uuid::random();
    const Uuid second = Uuid::random();
    ViewEnvironment environment;
    OVScrollArea area{environment};
    ReadingColumn* column = new ReadingColumn(environment, area);
    ConversationTurns* turns =
        new ConversationTurns(environment, *column, {.waitingWords = "正在想", .answerLanguage = "zh-Hans"});

private:
    static std::vector<ConversationTurnView*> sorted(const QList<ConversationTurnView*>& found) {
        std::vector<ConversationTurnView*> views(found.begin(), found.end());
        std::ranges::sort(views, {}, [](const QWidget* view) { return view->y(); });
        return views;
    }
};

TEST_F(Conversation, KeepsATurnWithItsSelectionWhileItsAnswerGrowsAndOthersFollow) {
    show({{first, "问", "答", true}});
    ConversationTurnView* const view = views().front();
    view->answer().selectAll();
    show({{first, "问", "答案", false}, {second, "再问", "", true}});
    ASSERT_EQ(views().size(), 2U);
    EXPECT_EQ(views().front(), view);
    EXPECT_EQ(view->answer().selectedText(), "答");
    view->answer().showPending();
    EXPECT_EQ(view->answer().plainText(), "答案");
}

TEST_F(Conversation, AnotherQuestionInATurnsPlaceIsAnotherTurn) {
    show({{first, "问", "答", false}, {second, "再问", "再答", false}});
    show({{first, "另问", "", true}});
    ASSERT_EQ(views().size(), 1U);
    EXPECT_EQ(views().front()->question().plainText(), "另问");
    EXPECT_TRUE(views().front()->answer().plainText().isEmpty());
    show({});
    EXPECT_TRUE(views().empty());
    EXPECT_TRUE(turns->isHidden());
}

TEST_F(Conversation, TabGoesThroughTheTurnsBeforeWhatStandsBelow) {
    OVButton above(environment, "上", OVButton::Kind::ghost);
    OVButton below(environment, "下", OVButton::Kind::ghost);
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* const part : std::initializer_list<QWidget*>{&above, &area, &below}) layout->addWidget(part);
    window.show();
    show({{first, "问", "答", false}});
    show({{first, "问", "答", false}, {second, "再问", "再答", false}});
    std::vector<QWidget*> stops;
    for (QWidget* next = above.nextInFocusChain(); next != &above; next = next->nextInFocusChain()) {
        if ((next->focusPolicy() & Qt::TabFocus) != 0) stops.push_back(next);
    }
    EXPECT_EQ(stops, (std::vector<QWidget*>{&views()[0]->question(), &views()[0]->answer(), &views()[1]->question(),
                                            &views()[1]->answer(), &below}));
    for (QWidget* const part : std::initializer_list<QWidget*>{&above, &area, &below}) part->setParent(nullptr);
}

// A bubble is as high as its text needs, be that shorter or longer than a line.
TEST_F(Conversation, EveryQuestionCanBeReadWhole) {
    show({{first, "嗯", "", false}, {second, std::string(400, 'x'), "", false}});
    for (const ConversationTurnView* const view : views()) {
        const OVStreamingText& text = view->question();
        EXPECT_GE(text.height(), text.sizeHint().height());
        EXPECT_GT(text.height(), 12);
        EXPECT_TRUE(view->rect().contains(QRect(text.mapTo(view, QPoint()), text.size())));
    }
    EXPECT_GT(views()[1]->question().height(), views()[0]->question().height());
}

}  // namespace
}  // namespace ovrin
