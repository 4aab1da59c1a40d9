#include <QApplication>
#include <QKeyEvent>
#include <QScreen>

#include "views/components/ov_text_editor.h"
#include "views/direct_ai/qt_direct_ai_panel.h"
#include "windows/direct_ai_window_presenter.h"
#include "windows/panel_fixture.h"

namespace ovrin {
namespace {

class DirectAIPanelTest : public PanelTest {
protected:
    DirectAIPanelTest() {
        environment.setSettings({.reducesMotion = true});
        panel.present();
        QApplication::processEvents();
    }
    // The one that is shown.
    OVTextEditor& field() const {
        const auto fields = panel.findChildren<OVTextEditor*>();
        return **std::ranges::find_if(fields, &QWidget::isVisible);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&field(), &event);
    }

    static constexpr DirectAIPanel::Form compact{.size = DirectAIWindowPresenter::compactSize,
                                                 .minimumSize = {480, 140}};
    static constexpr DirectAIPanel::Form expanded{.size = DirectAIWindowPresenter::expandedSize,
                                                  .minimumSize = {480, 420}};
    int closings = 0;
    ViewEnvironment environment;
    Published<std::string> brandImage{"EntranceIconLight"};
    DirectAIViewModel viewModel{"zh-Hans",
                                {.loop = loop, .ai = AIService(client), .prompts = prompts, .history = history}};
    QtDirectAIPanel panel{
        environment, brandImage, viewModel, compact, {.requestClose = [this] { ++closings; }, .resignedKey = [] {}}};
};

TEST_F(DirectAIPanelTest, WithoutMotionItTakesOnAFormAtOnceAndReturnsToWhereItWas) {
    panel.move(100, 300);
    const QRect bar = panel.frame();
    panel.animateTo(expanded);
    EXPECT_EQ(panel.frame(), QRect(80, 95, 580, 560));
    EXPECT_EQ(panel.minimumSize(), QSize(480, 420));
    panel.animateTo(compact);
    EXPECT_EQ(panel.frame(), bar);
    EXPECT_EQ(panel.minimumSize(), QSize(480, 140));
}

TEST_F(DirectAIPanelTest, StaysOnItsScreen) {
    const QRect screen = panel.screen()->availableGeometry();
    panel.move(screen.bottomRight() - QPoint(540, 150));
    panel.animateTo(expanded);
    EXPECT_TRUE(screen.contains(panel.frame()));
    panel.move(screen.topLeft());
    panel.animateTo(compact);
    panel.move(screen.topLeft());
    panel.animateTo(expanded);
    EXPECT_EQ(panel.frame().topLeft(), screen.topLeft());
}

TEST_F(DirectAIPanelTest, TheDraftIsSentFromEitherFieldAndKeptWhileAnAnswerStreams) {
    willStream("答");
    field().insertPlainText("问");
    press(Qt::Key_Return);
    EXPECT_EQ(viewModel.turns()->size(), 1U);
    EXPECT_TRUE(field().toPlainText().isEmpty());
    field().insertPlainText("再问");
    press(Qt::Key_Return);
    EXPECT_EQ(field().toPlainText(), "再问");
    loop.runPosted();
    finish();
    willAnswer("再答");
    press(Qt::Key_Return);
    EXPECT_EQ(viewModel.turns()->size(), 2U);
    viewModel.newConversation();
    EXPECT_TRUE(field().toPlainText().isEmpty());
    EXPECT_TRUE(field().hasFocus());
}

}  // namespace
}  // namespace ovrin
