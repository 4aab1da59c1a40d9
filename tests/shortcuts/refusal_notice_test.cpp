#include "shortcuts/refusal_notice.h"

#include "fakes/fake_presenters.h"
#include "shortcuts/shortcut_fixture.h"

namespace ovrin {
namespace {

class RefusalNoticeTest : public ShortcutTest {
protected:
    // One start of the program: how often the user was told.
    int start() {
        RefusalNotice notice(
            {.registry = registry, .notifications = notifications, .state = state, .showShortcuts = [this] {
                 journal.add("page");
             }});
        return start(notice);
    }
    int start(RefusalNotice& notice) {
        registry.removeAllHandlers();
        for (const auto shortcut : allOvShortcuts) {
            registry.add(name(shortcut));
            registry.onKeyDown(name(shortcut), [] {});
        }
        journal.take();
        notice.tell();
        return told();
    }
    int told() {
        const auto events = journal.take();
        last = events.empty() ? "" : events.back();
        return static_cast<int>(events.size());
    }

    FakeNotificationCenter notifications{journal};
    DefaultsStore state{directory.path() / "state.json"};
    std::string last;
};

TEST_F(RefusalNoticeTest, TellsAllRefusedOnceAndAgainWhenTheSetIsAnother) {
    EXPECT_EQ(start(), 0);
    hotKeys.takenByOthers = {commandShiftT, commandShiftW};
    EXPECT_EQ(start(), 1);
    EXPECT_NE(last.find("“截图翻译”"), std::string::npos);
    EXPECT_NE(last.find("“TalkBox”"), std::string::npos);
    EXPECT_EQ(last.find("“截图问 AI”"), std::string::npos);
    notifications.lastActivated();
    EXPECT_EQ(journal.take(), (Events{"page"}));
    EXPECT_EQ(start(), 0);

    registry.setShortcut(commandShiftT, name(OvShortcut::commandPalette));
    EXPECT_EQ(start(), 1);
    hotKeys.takenByOthers.clear();
    EXPECT_EQ(start(), 0);
    hotKeys.takenByOthers = {commandShiftT, commandShiftW};
    EXPECT_EQ(start(), 1);
}

TEST_F(RefusalNoticeTest, TellsOnceThatNoneCanWork) {
    hotKeys.whyNone = "none here.";
    hotKeys.takenByOthers = {commandShiftT, commandShiftS, commandShiftW};
    EXPECT_EQ(start(), 1);
    EXPECT_NE(last.find("none here."), std::string::npos);
    EXPECT_EQ(last.find("重新设置"), std::string::npos);
    registry.setShortcut(std::nullopt, name(OvShortcut::captureTranslate));
    EXPECT_EQ(start(), 0);
}

TEST_F(RefusalNoticeTest, WaitsForTheLastAnswer) {
    hotKeys.asksItsUser = true;
    RefusalNotice notice(
        {.registry = registry, .notifications = notifications, .state = state, .showShortcuts = [] {}});
    EXPECT_EQ(start(notice), 0);
    hotKeys.fail(commandShiftT, "denied");
    hotKeys.describe(commandShiftS);
    EXPECT_EQ(told(), 1);  // the line of the diagnostics
    hotKeys.describe(commandShiftW);
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(last.find("notification: "), 0U);
    hotKeys.fail(commandShiftW, "lost");
    EXPECT_EQ(last.find("“TalkBox”"), std::string::npos);
}

}  // namespace
}  // namespace ovrin
