#include "fakes/fake_desktop_layout.h"
#include "fakes/fake_mini_popover_window.h"
#include "panel_fixture.h"
#include "windows/mini_popover_placement.h"
#include "windows/mini_popover_presenter.h"

namespace ovrin {
namespace {

TEST(MiniPopoverPlacement, StandsBesideThePointerInsideTheVisibleFrame) {
    const std::vector<DesktopScreen> screens{{.frame = {0, 0, 1920, 1080}, .visibleFrame = {60, 40, 1860, 1000}}};
    const struct {
        WindowPoint pointer, origin;
    } rows[] = {
        {{500, 800}, {512, 538}},     // card from 538 to 763, 37 below the pointer
        {{0, 0}, {68, 48}},           // lower-left corner
        {{1919, 1079}, {1532, 782}},  // upper-right corner: it does not flip over to the pointer's left
        {{5000, 500}, {1532, 238}},   // on no display: the primary one
    };
    for (const auto& row : rows) EXPECT_EQ(miniPopoverOrigin(row.pointer, screens), row.origin) << row.pointer.x;
    EXPECT_EQ(miniPopoverOrigin({500, 800}, {}), (WindowPoint{-388, -258}));
}

TEST(MiniPopoverPlacement, StaysOnThePointersDisplay) {
    const std::vector<DesktopScreen> screens{{.frame = {0, 0, 1920, 1080}, .visibleFrame = {0, 0, 1920, 1080}},
                                             {.frame = {1920, 300, 1280, 800}, .visibleFrame = {1920, 300, 1280, 760}},
                                             {.frame = {0, -600, 800, 600}, .visibleFrame = {0, -600, 800, 600}}};
    EXPECT_EQ(miniPopoverOrigin({1920, 400}, screens), (WindowPoint{1932, 308}));
    EXPECT_EQ(miniPopoverOrigin({1919, 400}, screens), (WindowPoint{1532, 138}));
    EXPECT_EQ(miniPopoverOrigin({100, -1}, screens), (WindowPoint{112, -263}));
    EXPECT_EQ(miniPopoverOrigin({100, 0}, screens), (WindowPoint{112, 8}));
}

class MiniPopoverTest : public PanelTest {
protected:
    MiniPopoverTest() { defaults.setString("ovrin.targetLanguage", "zh-Hant-TW"); }

    static MiniPopoverViewModel::Services cardServices(ResultPanelViewModel::Services services) {
        return {.loop = services.loop,
                .translation = std::move(services.translation),
                .clipboard = services.clipboard,
                .toasts = services.toasts};
    }

    FakeDesktopLayout desktop;
    FakeMiniPopoverWindow* card = nullptr;
    MiniPopoverPresenter presenter{cardServices(services()), config, desktop,
                                   [this](MiniPopoverViewModel& viewModel, std::function<void()> requestClose) {
                                       auto made = std::make_unique<FakeMiniPopoverWindow>(journal, viewModel,
                                                                                           std::move(requestClose));
                                       card = made.get();
                                       return made;
                                   }};
};

TEST_F(MiniPopoverTest, StreamsTheTranslationOnceItIsOnScreen) {
    willStream("你");
    presenter.show("hello");
    EXPECT_EQ(card->origin, (WindowPoint{112, 638}));
    MiniPopoverViewModel& model = card->viewModel;
    EXPECT_EQ(model.targetLanguageName(), "Traditional Chinese (Taiwan)");
    EXPECT_TRUE(model.isStreaming().value());
    model.copyTranslation();
    EXPECT_EQ(journal.take(), Events{"card: hello"});
    model.start();
    loop.runPosted();
    model.start();
    loop.runPosted();
    EXPECT_EQ(requests(), 1U);
    EXPECT_EQ(lastRequest(), Events{"user: hello"});
    push("好");
    EXPECT_TRUE(model.isStreaming().value());
    finish();
    EXPECT_FALSE(model.isStreaming().value());
    EXPECT_EQ(model.translation().value(), "你好");
    model.start();
    loop.runPosted();
    EXPECT_EQ(requests(), 1U);
    model.copyTranslation();
    EXPECT_EQ(journal.take(), (Events{"clipboard: 你好", "toast checkmark: 译文已复制"}));
}

TEST_F(MiniPopoverTest, ACardClosedBeforeItsPlaceIsKnownNeverShows) {
    desktop.isSlow = true;
    presenter.show("hello");
    presenter.close();
    desktop.place.succeed({100, 900});
    loop.runPosted();
    EXPECT_EQ(journal.take(), Events{"card gone: hello"});
}

TEST_F(MiniPopoverTest, AFailureEndsTheWaiting) {
    http.willAnswer({.statusCode = 500});
    presenter.show("hello");
    loop.runPosted();
    EXPECT_FALSE(card->viewModel.isStreaming().value());
    EXPECT_EQ(card->viewModel.errorMessage().value(), "请求失败（HTTP 500）");
}

TEST_F(MiniPopoverTest, ASecondCardTakesThePlaceOfTheFirst) {
    willStream("一");
    presenter.show("one");
    loop.runPosted();
    const StreamWriter<std::string> first = std::move(http.openBody());
    const auto requestCloseOfTheFirst = card->requestClose;
    willStream("二");
    presenter.show("two");
    requestCloseOfTheFirst();
    loop.runPosted();
    EXPECT_TRUE(first.stopToken().stop_requested());
    EXPECT_EQ(journal.take(), (Events{"card: one", "card: two", "card gone: one"}));
    EXPECT_EQ(card->viewModel.translation().value(), "二");
    presenter.close();
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
}

TEST_F(MiniPopoverTest, ClosingIsSilentAndEndsTheRequest) {
    willStream("你");
    presenter.show("hello");
    loop.runPosted();
    journal.take();
    card->requestClose();
    EXPECT_FALSE(card->viewModel.isStreaming().value());
    EXPECT_EQ(card->viewModel.errorMessage().value(), std::nullopt);
    EXPECT_EQ(journal.take(), Events{});  // its view may still be handling the event
    loop.runPosted();
    EXPECT_EQ(journal.take(), Events{"card gone: hello"});
    EXPECT_TRUE(http.isBodyDropped());
    presenter.close();
    EXPECT_EQ(journal.take(), Events{});
}

}  // namespace
}  // namespace ovrin
