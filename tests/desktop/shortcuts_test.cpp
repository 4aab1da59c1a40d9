// The page of the global shortcuts in the settings: recording a combination and using it, and what is told about one
// that another program holds.
#include <algorithm>
#include <memory>
#include <optional>

#include "desktop/desktop_test.h"
#include "desktop/notification_recorder.h"

namespace ovrin {
namespace {

struct ShortcutsTest : DesktopTest {
    DesktopWindow waitForSettings() const {
        DesktopWindow window = waitFor("the settings", [this]() -> std::optional<DesktopWindow> {
                                   for (const DesktopWindow& found : user->find({.program = programName})) {
                                       if (found.title.starts_with("Ovrin 设置")) return found;
                                   }
                                   return std::nullopt;
                               }).value();
        user->waitUntilActive(window.id);
        user->waitForStillPicture(window.area);
        return window;
    }
    // The recorder of the row with the title.
    PixelArea recorder(const std::string& title) const {
        return waitFor("the recorder",
                       [&]() -> std::optional<ScreenReader::Element> {
                           const auto elements = reader->elements(programName);
                           const auto found = std::find_if(elements.begin(), elements.end(), [&](const auto& element) {
                               return element.role != "label" && element.name == title && element.area.height > 0;
                           });
                           return found == elements.end() ? std::nullopt : std::optional(*found);
                       })
            ->area;
    }
};

TEST_F(ShortcutsTest, ARecordedCombinationWorksAtOnceAndAClearedOneNoMore) {
    begin();
    ASSERT_EQ(assistant->run({"do", "settings", "shortcuts"}), 0);
    waitForSettings();
    user->click(recorder("截图翻译").center());
    user->pressKeys("Super_L+Control_L+j");
    waitFor("the first combination", [&] { return user->isTaken("Super_L+Control_L+j"); });
    EXPECT_FALSE(user->isTaken("Super_L+Shift_L+t"));

    // By the keyboard alone: past the button that clears it to the next recorder.
    user->pressKeys("Tab");
    user->pressKeys("Tab");
    user->pressKeys("Return");
    user->pressKeys("Super_L+Control_L+k");
    waitFor("the second combination", [&] { return user->isTaken("Super_L+Control_L+k"); });
    EXPECT_FALSE(user->isTaken("Super_L+Shift_L+s"));
    user->pressKeys("Delete");
    waitFor("the end of the second combination", [&] { return !user->isTaken("Super_L+Control_L+k"); });

    const auto line = openPage().lines()[0];
    user->pressKeys("Super_L+Control_L+j");
    assistant->waitForOverlays();
    user->drag(line.area.topLeft(), line.area.bottomRight());
    EXPECT_EQ(json::string(waitForHistory(1, Result::some)[0], "recordType"), "capture-translation");
}

TEST_F(ShortcutsTest, ARefusedCombinationIsToldUntilItWorks) {
    const std::string combination = "Super_L+Shift_L+p";  // of the palette
    std::unique_ptr<NotificationRecorder> recorder;
    begin({.beforeLaunch = [&] {
        user->takeKeys(combination);
        recorder = std::make_unique<NotificationRecorder>(desktop->busAddress());
    }});
    waitFor("the notification", [&] { return !recorder->notifications().empty(); });
    const auto told = recorder->notifications();
    EXPECT_EQ(told.size(), 1U);
    EXPECT_NE(told[0].body.find("“命令面板”"), std::string::npos);
    EXPECT_EQ(told[0].body.find("、"), std::string::npos);  // none but that

    recorder->activate(0);
    waitForSettings();
    const std::string reason = "此组合键已被其他程序占用。";
    waitForWords(reason);

    user->giveKeysBack(combination);
    user->pressKeys("Alt_L+1");
    waitForWords("默认目标语言");
    user->pressKeys("Alt_L+3");
    waitFor("the end of the warning", [&] { return !reader->shows(programName, reason); });
    press(Action::commandPalette);
    assistant->waitForPalette();
}

}  // namespace
}  // namespace ovrin
