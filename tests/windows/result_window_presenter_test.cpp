#include "windows/result_window_presenter.h"

#include "fakes/fake_result_panel_window.h"
#include "panel_fixture.h"

namespace ovrin {
namespace {

class ResultWindowPresenterTest : public PanelTest {
protected:
    ResultWindowPresenterTest() { defaults.setString("ovrin.targetLanguage", "fr"); }

    void showText(const std::string& text, const std::string& translation = "") {
        presenter->show(ResultPanelText{.text = text, .translation = translation});
    }
    Events events() {
        loop.runPosted();
        return journal.take();
    }

    FakeResultPanelWindow* window = nullptr;
    std::unique_ptr<ResultWindowPresenter> presenter = std::make_unique<ResultWindowPresenter>(
        services(), config, defaults, [this](std::function<void()> requestClose) {
            auto made = std::make_unique<FakeResultPanelWindow>(journal, std::move(requestClose));
            window = made.get();
            return made;
        });
};

TEST_F(ResultWindowPresenterTest, KeepsItsWindowAndFadesNewContentIntoAVisibleOne) {
    EXPECT_EQ(presenter->latestViewModel(), nullptr);
    presenter->showLatest();
    presenter->close();
    EXPECT_EQ(events(), Events{});
    showText("one");
    EXPECT_EQ(events(), (Events{"window", "content one", "normal", "present"}));
    defaults.setBoolean("ovrin.resultWindowAlwaysOnTop", true);
    showText("two");
    EXPECT_EQ(events(), (Events{"content two fades in", "floating", "present"}));
    window->hide();
    showText("three");
    EXPECT_EQ(events(), (Events{"content three", "floating", "present"}));
    EXPECT_EQ(requests(), 0U);
}

TEST_F(ResultWindowPresenterTest, LiftsAnOpenWindowWhenThePreferenceChanges) {
    defaults.setBoolean("ovrin.resultWindowAlwaysOnTop", true);
    presenter->applyLevel();
    EXPECT_EQ(events(), Events{});
    showText("one");
    defaults.setBoolean("ovrin.resultWindowAlwaysOnTop", false);
    presenter->applyLevel();
    EXPECT_EQ(events(), (Events{"window", "content one", "floating", "present", "normal"}));
}

TEST_F(ResultWindowPresenterTest, ClosingEndsTheWorkAndTheNextShowMakesANewWindow) {
    showText("one");
    willStream("Un");
    presenter->latestViewModel()->translate();
    loop.runPosted();
    presenter->latestViewModel()->speakPrimaryText();
    journal.take();
    window->requestClose();
    EXPECT_FALSE(presenter->latestViewModel()->isTranslating().value());
    EXPECT_EQ(journal.take(), Events{"silence"});  // its view may still be handling the event
    EXPECT_EQ(events(), Events{"window gone, showed one"});
    EXPECT_TRUE(http.isBodyDropped());

    EXPECT_EQ(presenter->latestViewModel()->translation().value(), "Un");
    presenter->showLatest();
    EXPECT_EQ(events(), (Events{"window", "content one", "normal", "present"}));
    presenter->showLatest();
    EXPECT_EQ(events(), (Events{"normal", "present"})) << "what the user has opened and scrolled stays";
}

TEST_F(ResultWindowPresenterTest, AClosedWindowClosesNothingMore) {
    showText("one");
    const std::function<void()> requestClose = window->requestClose;
    requestClose();
    requestClose();
    showText("two");
    requestClose();
    EXPECT_EQ(events(), (Events{"window", "content one", "normal", "present", "window", "content two", "normal",
                                "present", "window gone, showed one"}));
    const std::function<void()> requestCloseOfTheSecond = window->requestClose;
    requestCloseOfTheSecond();
    presenter.reset();
    requestCloseOfTheSecond();
    EXPECT_EQ(events(), Events{"window gone, showed two"});
}

TEST_F(ResultWindowPresenterTest, MayBeClosedOrGivenNewContentByANotificationOfItsContent) {
    showText("one");
    auto watch = presenter->latestViewModel()->isTranslating().onDidChange([this](bool isTranslating) {
        if (isTranslating) return;
        presenter->close();
        showText("two");
    });
    willAnswer("Un");
    presenter->latestViewModel()->translate();
    loop.runPosted();
    EXPECT_EQ(presenter->latestViewModel()->originalText().value(), "two");
    EXPECT_EQ(journal.take().back(), "window gone, showed one");
}

TEST_F(ResultWindowPresenterTest, KnowsWhetherATranslationWasShown) {
    EXPECT_FALSE(presenter->hasTranslationResult());
    showText("one", " \n");
    EXPECT_FALSE(presenter->hasTranslationResult());
    showText("one", "un");
    EXPECT_TRUE(presenter->hasTranslationResult());
    presenter->close();
    EXPECT_TRUE(presenter->hasTranslationResult());
}

}  // namespace
}  // namespace ovrin
