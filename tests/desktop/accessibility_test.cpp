// The windows for somebody who hears them and has no pointer.
#include "desktop/accessibility_walk.h"
#include "desktop/desktop_test.h"
#include "fakes/loopback_server.h"

namespace ovrin {
namespace {

using ::testing::IsEmpty;

struct AccessibilityTest : DesktopTest {
    // The window that has the keyboard.
    std::vector<std::string> walk(const std::string& name) const {
        waitFor("the keyboard in " + name, [&] {
            const auto active = user->view().window(user->view().activeWindow());
            return active && active->title == name;
        });
        return AccessibilityWalk::faults(*reader, *user, programName, name);
    }
};

TEST_F(AccessibilityTest, TheWindowsOfAnswersCanBeWalkedThrough) {
    begin({.preferences = {{"ovrin.targetLanguage", "zh-Hans"}}});
    press(Action::inputTranslate);
    EXPECT_THAT(walk("输入翻译 — Ovrin"), IsEmpty());
    user->pressKeys("Control_L+w");

    auto& page = openPage();
    page.copyText(page.lines()[3].text);
    press(Action::clipboardTranslate);
    waitForHistory(1, Result::some);
    user->waitUntilActive(assistant->waitForPanel().id);
    EXPECT_THAT(walk("Ovrin"), IsEmpty());

    press(Action::directAskAI);
    EXPECT_THAT(walk("TalkBox — Ovrin"), IsEmpty());
    press(Action::commandPalette);
    EXPECT_THAT(walk("命令面板"), IsEmpty());
}

TEST_F(AccessibilityTest, TheHistoryCanBeWalkedThrough) {
    begin();
    auto& page = openPage();
    for (const std::size_t line : {3U, 4U}) {
        page.copyText(page.lines()[line].text);
        press(Action::clipboardTranslate);
        waitForHistory(line - 2, Result::some);
    }
    EXPECT_EQ(assistant->run({"do", "history"}), 0);
    const DesktopWindow window = user->waitForWindow({.title = "历史记录 — Ovrin", .program = programName});
    user->waitForStillPicture(window.area);
    EXPECT_THAT(walk("历史记录 — Ovrin"), IsEmpty());
    clickOn("清除全部");
    EXPECT_THAT(walk("清除全部历史记录？"), IsEmpty());
}

TEST_F(AccessibilityTest, EveryPageOfTheSettingsCanBeWalkedThrough) {
    const auto listModels = [](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send(httpResponse(R"({"data": [{"id": "small", "owned_by": "llamacpp"}]})"));
    };
    const LoopbackServer first(listModels);
    const LoopbackServer second(listModels);
    const std::string ports = std::to_string(first.port()) + "," + std::to_string(second.port());
    begin({.environment = {"OVRIN_LOCAL_PORTS=" + ports}});
    for (const char* const section : {"general", "service", "shortcuts", "advanced", "about"}) {
        EXPECT_EQ(assistant->run({"do", "settings", section}), 0);
        const DesktopWindow window = user->waitForWindow({.title = "Ovrin 设置", .program = programName});
        if (section == std::string_view("service"))
            waitForWords("使用 llama.cpp（" + std::to_string(second.port()) + "）");
        user->waitForStillPicture(window.area);
        EXPECT_THAT(walk("Ovrin 设置"), IsEmpty()) << section;
    }
}

}  // namespace
}  // namespace ovrin
