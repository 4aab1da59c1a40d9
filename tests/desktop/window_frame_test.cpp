// The windows that draw their own frame, under a window manager.
#include <algorithm>

#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

struct WindowFrameTest : DesktopTest {
    DesktopWindow openSettings(const std::string& page) {
        EXPECT_EQ(assistant->run({"do", "settings", page}), 0);
        DesktopWindow window = user->waitForWindow({.program = programName, .width = 820, .height = 660});
        user->waitUntilActive(window.id);
        return window;
    }
    PixelArea area(const DesktopWindow& window) const { return user->view().window(window.id).value_or(window).area; }
    PixelSpot bar(const DesktopWindow& window) const {
        return {.x = area(window).x + area(window).width / 2, .y = area(window).y + 14};
    }
    template <typename Condition>
    void drag(PixelSpot from, const std::string& what, Condition isReached) {
        dragUntil(*user, from, what, isReached);
        user->waitForFreePointer();
    }
};

TEST_F(WindowFrameTest, TheBarAndTheEdgesOfTheSettingsWorkAsThoseOfAnyWindow) {
    begin();
    const DesktopWindow window = openSettings("about");
    const PixelArea first = area(window);
    user->doubleClick(bar(window));
    waitFor("the window to fill the work area", [&] { return area(window).width > 1800; });
    reader->waitForName(programName, "还原");
    user->doubleClick(bar(window));
    waitFor("the window to be as before", [&] { return area(window).width == first.width; });
    reader->waitForName(programName, "最大化");

    drag(bar(window), "the window to be moved", [&] { return area(window).x != first.x; });
    const PixelArea moved = area(window);
    EXPECT_EQ(moved.width, first.width);
    drag({.x = moved.x + moved.width - 2, .y = moved.y + moved.height - 2}, "the window to be larger",
         [&] { return area(window).width > moved.width; });

    user->click(bar(window), TestUser::Button::right);
    waitFor("the window's menu", [&] {
        return std::ranges::any_of(user->find({.program = programName}), [](const DesktopWindow& shown) {
            return shown.isOverrideRedirect && shown.area.width < 300 && shown.area.height > 60;
        });
    });
    for (const char* const key : {"Down", "Down", "Return"}) user->pressKeys(key);
    waitFor("the window to fill the work area again", [&] { return area(window).width > 1800; });

    clickOn("最小化");
    user->waitUntilGone(window.id);
    EXPECT_EQ(assistant->run({"do", "settings"}), 0);
    user->waitUntilActive(window.id);
    reader->waitForName(programName, "检查更新…");
    user->pressKeys("Control_L+w");
    user->waitUntilGone(window.id);
    EXPECT_TRUE(assistant->process().isRunning());
}

TEST_F(WindowFrameTest, ControlAndCommaComeToTheSettingsFromAnotherWindow) {
    begin();
    EXPECT_EQ(assistant->run({"do", "input-translate"}), 0);
    user->waitUntilActive(user->waitForWindow({.program = programName, .width = 760, .height = 490}).id);
    user->pressKeys("Control_L+comma");
    user->waitUntilActive(user->waitForWindow({.program = programName, .width = 820, .height = 660}).id);
    user->pressKeys("Alt_L+4");
    reader->waitForName(programName, "翻译 Prompt");
    user->pressKeys("Control_L+Shift_L+Tab");
    user->pressKeys("Control_L+Shift_L+Tab");
    reader->waitForName(programName, "连接 URL");
}

}  // namespace
}  // namespace ovrin
