#include "shortcuts/hotkey_manager.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/virtual_loop.h"
#include "fakes/fake_assistant_actions.h"
#include "shortcut_fixture.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

constexpr Shortcut optionA(Key::a, Modifiers::option);
constexpr Shortcut commandOptionO(Key::o, commandOption);
constexpr Shortcut commandOptionP(Key{35}, commandOption);

class HotkeyManagerTest : public ShortcutTest {
protected:
    void bindAll() {
        manager = std::make_unique<HotkeyManager>(registry, defaults, loop);
        manager->bindAll(actions);
        journal.take();
    }

    std::optional<Shortcut> shortcutOf(OvShortcut shortcut) const { return registry.getShortcut(name(shortcut)); }

    VirtualLoop loop;
    FakeAssistantActions actions{journal};
    std::unique_ptr<HotkeyManager> manager;
};

TEST_F(HotkeyManagerTest, AFreshInstallationHasThreeCombinations) {
    bindAll();
    for (const auto shortcut : allOvShortcuts) {
        const auto expected = shortcut == OvShortcut::captureTranslate ? std::optional(commandShiftT)
                              : shortcut == OvShortcut::askWhatIsThis  ? std::optional(commandShiftS)
                              : shortcut == OvShortcut::directAskAI    ? std::optional(commandShiftW)
                                                                       : std::nullopt;
        EXPECT_EQ(shortcutOf(shortcut), expected) << title(shortcut);
        EXPECT_EQ(expected.has_value(), defaults.contains("KeyboardShortcuts_" + name(shortcut).rawValue));
    }
    EXPECT_EQ(hotKeys.timesSet, 1);  // the desktop asks its user once
    EXPECT_TRUE(defaults.boolean("ovrin.didMigrateRetiredDefaultShortcuts.v1"));
    EXPECT_TRUE(defaults.boolean("ovrin.didMigratePrimaryDefaultShortcuts.v2"));
}

TEST_F(HotkeyManagerTest, TheRetiredNameIsForgottenAtEveryLaunch) {
    for (int launch = 0; launch < 2; ++launch) {
        defaults.setString("KeyboardShortcuts_ovrin.aiExplain", "anything");
        bindAll();
        EXPECT_FALSE(defaults.contains("KeyboardShortcuts_ovrin.aiExplain"));
    }
}

// What a user of an earlier version has, and what becomes of it.
struct Migration {
    OvShortcut shortcut;
    Shortcut before;
    std::optional<Shortcut> after;
};

TEST_F(HotkeyManagerTest, CombinationsThatWereRetiredAreClearedAndOthersKept) {
    const std::vector<Migration> migrations{
        {OvShortcut::directAskAI, Shortcut(Key::space, commandShift), std::nullopt},
        {OvShortcut::directAskAI, Shortcut(Key::space, commandOption), std::nullopt},
        {OvShortcut::inputTranslate, optionA, std::nullopt},
        {OvShortcut::selectionTranslate, Shortcut(Key::d, Modifiers::option), std::nullopt},
        {OvShortcut::silentSelectionTranslate, Shortcut(Key::d, Modifiers::option | Modifiers::shift), std::nullopt},
        {OvShortcut::silentInputTranslate, Shortcut(Key::e, Modifiers::option), std::nullopt},
        {OvShortcut::silentCaptureOCR, Shortcut(Key::c, Modifiers::option), std::nullopt},
        {OvShortcut::clipboardOCR, commandOptionO, std::nullopt},
        {OvShortcut::clipboardTranslate, Shortcut(Key::v, commandOption), std::nullopt},
        {OvShortcut::showResultWindow, Shortcut(Key::w, commandOption), std::nullopt},
        {OvShortcut::commandPalette, Shortcut(Key::k, commandOption), std::nullopt},
        {OvShortcut::clipboardOCR, commandOptionP, commandOptionP},
        {OvShortcut::clipboardTranslate, commandOptionO, commandOptionO},  // retired for another name only
        {OvShortcut::selectionTranslate, optionA, optionA},
    };
    for (const auto& [shortcut, before, after] : migrations) {
        forgetPreferences();
        registry.setShortcut(before, name(shortcut));
        bindAll();
        EXPECT_EQ(shortcutOf(shortcut), after) << title(shortcut);
        EXPECT_EQ(hotKeys.isRegistered(before), after == before);
        registry.setShortcut(std::nullopt, name(shortcut));
    }
}

TEST_F(HotkeyManagerTest, EarlierPrimaryDefaultsMoveToTheCurrentOnes) {
    struct Row {
        std::optional<Shortcut> captureBefore, askBefore, captureAfter, askAfter;
    };
    const std::vector<Row> rows{
        {commandShiftS, commandShiftW, std::nullopt, commandShiftS},
        {commandShiftS, optionA, std::nullopt, optionA},
        {optionA, commandShiftW, optionA, commandShiftS},
        {optionA, commandOptionP, optionA, commandOptionP},
        {commandShiftS, std::nullopt, std::nullopt, commandShiftS},
    };
    for (const auto& row : rows) {
        forgetPreferences();
        if (row.captureBefore) registry.setShortcut(row.captureBefore, name(OvShortcut::captureOCR));
        if (row.askBefore) registry.setShortcut(row.askBefore, name(OvShortcut::askWhatIsThis));
        bindAll();
        EXPECT_EQ(shortcutOf(OvShortcut::captureOCR), row.captureAfter);
        EXPECT_EQ(shortcutOf(OvShortcut::askWhatIsThis), row.askAfter);
        ASSERT_TRUE(hotKeys.press(row.askAfter.value()));
        loop.runPosted();
        EXPECT_EQ(journal.take(), (Events{"captureWhatIsThis"}));
    }
}

TEST_F(HotkeyManagerTest, MigrationsRunOnce) {
    bindAll();
    registry.setShortcut(optionA, name(OvShortcut::inputTranslate));
    registry.setShortcut(commandShiftS, name(OvShortcut::captureOCR));
    registry.setShortcut(commandShiftW, name(OvShortcut::askWhatIsThis));
    bindAll();
    EXPECT_EQ(shortcutOf(OvShortcut::inputTranslate), optionA);
    EXPECT_EQ(shortcutOf(OvShortcut::captureOCR), commandShiftS);
    EXPECT_EQ(shortcutOf(OvShortcut::askWhatIsThis), commandShiftW);
}

TEST_F(HotkeyManagerTest, EachShortcutRunsItsActionAfterTheKeyEvent) {
    const std::vector<std::string> expected{
        "captureOCR",         "captureTranslate",   "captureWhatIsThis",        "showDirectAI",
        "showInputTranslate", "selectionTranslate", "silentSelectionTranslate", "replaceSelection",
        "silentCaptureOCR",   "clipboardOCR",       "clipboardTranslate",       "toast 还没有识别或翻译结果 clock",
        "showCommandPalette"};
    bindAll();
    for (std::size_t index = 0; index < allOvShortcuts.size(); ++index) {
        registry.setShortcut(optionA, name(allOvShortcuts[index]));
        journal.take();
        hotKeys.press(optionA);
        EXPECT_EQ(journal.take(), Events{});
        loop.runPosted();
        EXPECT_EQ(journal.take(), Events{expected[index]});
        registry.setShortcut(std::nullopt, name(allOvShortcuts[index]));
    }
    actions.hasLatestResult = true;
    perform(OvShortcut::showResultWindow, actions);
    EXPECT_EQ(journal.events().back(), "showLatestResult");
}

TEST_F(HotkeyManagerTest, BindingAgainDoesNotDoubleTheActions) {
    bindAll();
    manager->bindAll(actions);
    journal.take();
    hotKeys.press(commandShiftT);
    loop.runPosted();
    EXPECT_EQ(journal.events(), (Events{"captureTranslate"}));
}

TEST_F(HotkeyManagerTest, BindsEvenWhenNothingCanBeStored) {
    registry.setShortcut(optionA, name(OvShortcut::captureOCR));
    DefaultsStore broken(file / "below a file");
    HotkeyManager other(registry, broken, loop);
    other.bindAll(actions);
    journal.take();
    hotKeys.press(optionA);
    loop.runPosted();
    EXPECT_EQ(journal.events(), (Events{"captureOCR"}));
}

TEST_F(HotkeyManagerTest, NothingRunsAfterItsEnd) {
    bindAll();
    hotKeys.press(commandShiftT);
    manager.reset();
    journal.take();
    loop.runPosted();
    EXPECT_FALSE(hotKeys.press(commandShiftT));
    EXPECT_EQ(journal.events(), Events{});
}

}  // namespace
}  // namespace ovrin
