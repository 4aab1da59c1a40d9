// Several monitors, of different heights and with the primary one not at the origin.
#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

struct MonitorsTest : DesktopTest {
    static constexpr PixelArea left{.x = 0, .y = 180, .width = 1000, .height = 900};
    static constexpr PixelArea right{.x = 1000, .y = 0, .width = 1280, .height = 1080};

    void beginWithTwo() {
        begin({.desktop = {.width = 2280,
                           .height = 1080,
                           .monitors = {{.name = "RIGHT", .area = right}, {.name = "LEFT", .area = left}},
                           .accessibility = PrivateDesktop::Accessibility::on}});
    }
    void movePage(SampleProgram& page, PixelSpot to) {
        user->moveWindow(page.window().id, to);
        waitFor("the page to be moved", [&] { return user->view().window(page.window().id)->area.topLeft() == to; });
    }
};

TEST_F(MonitorsTest, EachHasAnOverlayAndIsReadWhereItIs) {
    beginWithTwo();
    auto& page = openPage();
    for (const PixelArea& monitor : {left, right}) {
        movePage(page, {.x = monitor.x + 20, .y = monitor.y + 30});
        const auto line = page.lines()[1];
        press(Action::captureOCR);
        const auto overlays = assistant->waitForOverlays(2);
        EXPECT_THAT((std::vector{overlays[0].area, overlays[1].area}), testing::UnorderedElementsAre(left, right));
        user->drag(line.area.topLeft(), line.area.bottomRight());
        user->waitForClipboard(line.text);
        waitFor("the end of the overlays", [&] { return assistant->overlays().empty(); });
        page.copyText("");
    }
}

TEST_F(MonitorsTest, ASelectionAcrossBothIsReadOnTheFirstOnly) {
    beginWithTwo();
    auto& page = openPage();
    movePage(page, {.x = left.x + left.width - 500, .y = 200});
    const auto line = page.lines()[3];
    capture(Action::captureOCR, line.area);
    std::string read;
    waitFor("text on the clipboard", [&] { return !(read = user->clipboardText()).empty(); });
    EXPECT_LT(read.size(), line.text.size());
    EXPECT_TRUE(line.text.ends_with(read.substr(read.size() - 8))) << "the primary monitor is the first: " << read;
}

TEST_F(MonitorsTest, TheToastAndTheCardAreOnTheRightMonitor) {
    beginWithTwo();
    openPage().clearClipboard();
    press(Action::clipboardTranslate);
    const DesktopWindow toast = assistant->waitForToast();
    EXPECT_EQ(toast.area.topLeft(), (PixelSpot{right.x + right.width / 2 - 130, 28}));

    auto& editor = openEditor();
    editor.selectText("A ticket to the small island costs three coins.");
    user->moveTo({.x = 990, .y = 1070});
    press(Action::silentSelectionTranslate);
    const DesktopWindow card = user->waitForWindow({.program = programName, .width = 350, .height = 225});
    EXPECT_TRUE(left.contains(card.area.topLeft()) && left.contains(card.area.bottomRight()));
}

TEST_F(MonitorsTest, OneIsUnpluggedBetweenAndDuringSelections) {
    beginWithTwo();
    auto& page = openPage();
    movePage(page, {.x = right.x + 20, .y = 60});
    const auto line = page.lines()[2];
    press(Action::captureOCR);
    assistant->waitForOverlays(2);
    desktop->setMonitors({{.name = "RIGHT", .area = right}});
    assistant->waitForOverlays(1);
    waitFor("the end of the overlays", [&] {  // once what is left has the keyboard
        user->pressKeys("Escape");
        return assistant->overlays().empty();
    });

    press(Action::captureOCR);
    EXPECT_EQ(assistant->waitForOverlays(1)[0].area, right);
    user->drag(line.area.topLeft(), line.area.bottomRight());
    user->waitForClipboard(line.text);
}

}  // namespace
}  // namespace ovrin
