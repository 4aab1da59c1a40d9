// The window of the input translation, from the shortcut that opens it to its end.
#include "desktop/desktop_test.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

using Plan = PracticeService::Plan;
using State = PracticeService::Exchange::State;

const std::string sentence = "A ticket to the small island costs three coins.";

struct InputTranslateTest : DesktopTest {
    DesktopWindow waitForWindow() const {
        DesktopWindow window = user->waitForWindow({.title = "输入翻译 — Ovrin", .program = programName});
        user->waitUntilActive(window.id);
        return window;
    }
    DesktopWindow open() const {
        press(Action::inputTranslate);
        return waitForWindow();
    }
    void translate(const std::string& text) const {
        user->type(text);
        user->pressKeys("Control_L+Return");
    }
    // What the translation comes out as.
    std::string waitForTranslation(std::size_t exchange) const {
        std::string answer = waitForExchange(exchange).answer;
        waitForHistory(exchange + 1, Result::some);
        waitForWords("开始翻译");
        return answer;
    }
};

TEST_F(InputTranslateTest, TranslatesWhatIsTypedAndBackAgain) {
    begin({.preferences = {{"ovrin.targetLanguage", "zh-Hans"}}});
    const DesktopWindow window = open();
    EXPECT_EQ(window.area.width, 760);
    EXPECT_EQ(window.area.height, 490);
    EXPECT_NEAR(window.area.center().x, 960, 2);
    translate("  " + sentence + "\n");
    const std::string answer = waitForTranslation(0);
    EXPECT_EQ(lastMessage(service.exchanges()[0]), sentence);
    waitForWords(*pageTranslation(sentence, "zh-Hans"));
    waitForWords("English");
    const json::Value history = assistant->history();
    EXPECT_EQ(json::string(history[0], "recordType"), "input-translation");
    EXPECT_EQ(json::string(history[0], "sourceText"), sentence);
    EXPECT_EQ(json::string(history[0], "resultText"), answer);

    clickOn("复制");
    user->waitForClipboard(answer);
    expectToast("译文已复制");

    clickOn("交换语言");
    waitForTranslation(1);
    EXPECT_EQ(lastMessage(service.exchanges()[1]), answer);
    EXPECT_NE(systemPrompt(service.exchanges()[1]).find("BCP-47: en)"), std::string::npos);
    reader->waitForName(programName, "目标语言：English");
    waitForWords("Simplified Chinese");
}

TEST_F(InputTranslateTest, TranslatesIntoThePickedLanguage) {
    begin({.preferences = {{"ovrin.targetLanguage", "zh-Hans"}}});
    open();
    user->type(sentence);
    clickOn("目标语言：简体中文");
    const DesktopWindow menu = assistant->waitForMenu();
    for (const char* const key : {"Down", "Down", "Down", "Return"}) user->pressKeys(key);  // 繁體中文, English, 日本語
    user->waitUntilGone(menu.id);
    reader->waitForName(programName, "目标语言：日本語");
    EXPECT_TRUE(service.exchanges().empty());
    clickOn("开始翻译");
    waitForTranslation(0);
    waitForWords(*pageTranslation(sentence, "ja"));
}

TEST_F(InputTranslateTest, TroubleIsToldBesideWhatCameAndTheNextAttemptWorks) {
    begin();
    open();
    service.planNext({.trouble = Plan::Trouble::refuse});
    translate(sentence);
    waitForWords("练习服务按计划拒绝了这次请求。");
    service.planNext({.trouble = Plan::Trouble::breakOff, .pieces = 6});
    clickOn("开始翻译");
    EXPECT_EQ(waitForExchange(1).state, State::failed);
    waitForWords("连接被中断。");
    waitForWords("一张到小岛");
    clickOn("开始翻译");
    EXPECT_EQ(waitForExchange(2).state, State::complete);
    waitFor("the trouble to be forgotten", [&] { return !reader->shows(programName, "连接被中断。"); });
    waitForHistory(1, Result::some);
}

TEST_F(InputTranslateTest, ClearingAndStartingAnewEndARunningTranslation) {
    begin();
    open();
    service.planNext({.trouble = Plan::Trouble::hold, .pieces = 2});
    translate(sentence);
    waitForWords("翻译中");
    service.planNext({.trouble = Plan::Trouble::hold, .pieces = 2});
    translate(" Again.");
    EXPECT_EQ(waitForExchange(0).state, State::abandoned);
    waitFor("the second request", [&] { return service.exchanges().size() == 2; });
    clickOn("清空");
    EXPECT_EQ(waitForExchange(1).state, State::abandoned);
    waitFor("two empty halves", [&] { return !reader->shows(programName, "island"); });
    waitForWords("翻译结果会流式显示在这里");

    // The keyboard is where one goes on.
    translate(sentence);
    EXPECT_EQ(lastMessage(waitForExchange(2)), sentence);
}

TEST_F(InputTranslateTest, IsOneWindowThatKeepsItsTextUntilItIsClosed) {
    begin();
    const DesktopWindow window = open();
    user->type("kept");
    auto& page = openPage();
    user->waitUntilActive(page.window().id);
    EXPECT_EQ(assistant->run({"do", "input-translate"}), 0);
    user->waitUntilActive(window.id);
    user->type(" and more");
    waitForWords("kept and more");

    service.planNext({.trouble = Plan::Trouble::hold, .pieces = 2});
    user->pressKeys("Control_L+Return");
    waitForWords("翻译中");
    user->pressKeys("Control_L+w");
    user->waitUntilGone(window.id);
    EXPECT_EQ(waitForExchange(0).state, State::abandoned);

    const DesktopWindow next = open();
    waitForWords("翻译结果会流式显示在这里");
    EXPECT_FALSE(reader->shows(programName, "kept"));
    clickOn("关闭");
    user->waitUntilGone(next.id);
    EXPECT_TRUE(assistant->process().isRunning());
}

}  // namespace
}  // namespace ovrin
