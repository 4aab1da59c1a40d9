// The windows for somebody who hears them and has no pointer.
#include "desktop/accessibility_walk.h"
#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

using ::testing::IsEmpty;

struct AccessibilityTest : DesktopTest {
    // The window that has the keyboard, by the beginning of its title.
    std::vector<std::string> walk(const std::string& name) const {
        waitFor("the keyboard in " + name, [&] {
            const auto active = user->view().window(user->view().activeWindow());
            return active && active->title.starts_with(name);
        });
        return AccessibilityWalk::faults(*reader, *user, programName, name);
    }
};

TEST_F(AccessibilityTest, TheWindowsOfAnswersCanBeWalkedThrough) {
    begin({.preferences = {{"ovrin.targetLanguage", "zh-Hans"}}});
    press(Action::inputTranslate);
    EXPECT_THAT(walk("输入翻译"), IsEmpty());
    user->pressKeys("Control_L+w");

    auto& page = openPage();
    page.copyText(page.lines()[3].text);
    press(Action::clipboardTranslate);
    waitForHistory(1, Result::some);
    user->waitUntilActive(assistant->waitForPanel().id);
    EXPECT_THAT(walk("Ovrin"), IsEmpty());

    press(Action::directAskAI);
    EXPECT_THAT(walk("TalkBox"), IsEmpty());
    press(Action::commandPalette);
    EXPECT_THAT(walk("命令面板"), IsEmpty());
}

}  // namespace
}  // namespace ovrin
