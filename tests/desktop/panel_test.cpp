// The result panel while an answer streams into it.
#include <cstdlib>

#include "desktop/desktop_test.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

using Plan = PracticeService::Plan;
using State = PracticeService::Exchange::State;

struct PanelTest : DesktopTest {
    // The first line of the page that is not Chinese, being translated in the panel.
    DesktopWindow translateLine() {
        auto& page = programs.empty() ? openPage() : *programs.front();
        page.copyText(page.lines()[3].text);
        press(Action::clipboardTranslate);
        return assistant->waitForPanel();
    }
};

TEST_F(PanelTest, ClosingItEndsTheRequestDownToTheSocket) {
    begin();
    service.planNext({.trouble = Plan::Trouble::hold, .pieces = 4});
    const DesktopWindow panel = translateLine();
    waitForWords("车站的钟");
    clickOn("关闭");
    user->waitUntilGone(panel.id);
    EXPECT_EQ(waitForExchange(0).state, State::abandoned);
    EXPECT_FALSE(json::string(waitForHistory(1)[0], "resultText").has_value());

    // It is not gone for good.
    press(Action::showResultWindow);
    assistant->waitForPanel();
    waitForWords("车站的钟");
}

TEST_F(PanelTest, ANewTranslationTakesTheWindowOverAndEndsTheOldRequest) {
    begin();
    service.planNext({.trouble = Plan::Trouble::hold, .pieces = 2});
    const DesktopWindow first = translateLine();
    waitFor("the first request", [&] { return !service.exchanges().empty(); });
    const DesktopWindow second = translateLine();
    EXPECT_EQ(first.id, second.id);
    EXPECT_EQ(waitForExchange(0).state, State::abandoned);
    EXPECT_EQ(waitForExchange(1).state, State::complete);
    EXPECT_EQ(json::string(waitForHistory(2, Result::some)[0], "resultText"), waitForExchange(1).answer);
}

TEST_F(PanelTest, TroubleIsToldAndTheNextAttemptWorks) {
    begin();
    service.planNext({.trouble = Plan::Trouble::refuse});
    translateLine();
    waitForWords("练习服务按计划拒绝了这次请求。");
    service.planNext({.trouble = Plan::Trouble::breakOff, .pieces = 6});
    clickOn("翻译");
    EXPECT_EQ(waitForExchange(1).state, State::failed);
    waitForWords("连接被中断。");
    clickOn("翻译");
    waitForWords(*pageTranslation(programs.front()->lines()[3].text, "zh-Hans"));
    EXPECT_EQ(json::string(waitForHistory(1, Result::some)[0], "resultText"), waitForExchange(2).answer);
}

TEST_F(PanelTest, IsWhereTheUserPutItAndStaysOnTopWhenToldTo) {
    begin({.preferences = {{"ovrin.resultWindowAlwaysOnTop", true}}});
    DesktopWindow panel = translateLine();
    EXPECT_EQ(panel.area.width, 460);
    EXPECT_EQ(panel.area.height, 460);
    EXPECT_NEAR(panel.area.center().x, 960, 2);
    waitFor("a window above others", [&] { return user->view().window(panel.id)->hasState("_NET_WM_STATE_ABOVE"); });
    waitForExchange(0);

    const PixelSpot bare{.x = panel.area.x + panel.area.width / 2, .y = panel.area.y + 20};
    user->moveTo(bare);
    user->press();
    waitFor("the panel to be moved", [&, x = bare.x]() mutable {  // the window manager takes over when it gets to it
        x = x < bare.x + 400 ? x + 25 : bare.x;
        user->moveTo({.x = x, .y = bare.y});
        return std::abs(user->view().window(panel.id)->area.x - panel.area.x) > 100;
    });
    user->release();
    const PixelArea moved = user->view().window(panel.id)->area;
    translateLine();
    waitForExchange(1);
    EXPECT_EQ(user->view().window(panel.id)->area, moved);
}

TEST_F(PanelTest, CopiesWhatItShows) {
    begin();
    translateLine();
    const auto exchange = waitForExchange(0);
    waitForHistory(1, Result::some);
    clickOn("复制");
    user->waitForClipboard(exchange.answer);
    expectToast("内容已复制");
}

TEST_F(PanelTest, WithoutAResultThereIsNone) {
    begin();
    press(Action::showResultWindow);
    expectToast("还没有识别或翻译结果");
    EXPECT_FALSE(assistant->panel());
}

}  // namespace
}  // namespace ovrin
