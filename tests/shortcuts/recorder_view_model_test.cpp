#include "shortcuts/recorder_view_model.h"

#include <optional>
#include <string>
#include <vector>

#include "shortcut_fixture.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::RecorderAlert;
using KeyboardShortcuts::RecorderOutcome;
using KeyboardShortcuts::RecorderViewModel;
using KeyboardShortcuts::Shortcut;
using Outcome = RecorderOutcome::Kind;
using Alert = RecorderAlert::Kind;

constexpr Shortcut menuCombination(Key{43}, Modifiers::command);
constexpr Shortcut systemCombination(Key::d, Modifiers::command);

class FakeSystemShortcuts final : public SystemShortcuts {
public:
    std::vector<Shortcut> enabledShortcuts() const override { return {systemCombination}; }
};

class RecorderTest : public ShortcutTest {
protected:
    RecorderOutcome press(Key key, Modifiers modifiers, int otherFlags = 0) {
        return recorder.handleKeyPress(key, static_cast<int>(modifiers) | otherFlags);
    }

    FakeSystemShortcuts systemShortcuts;
    RecorderViewModel recorder{
        registry,
        plain,
        {.systemShortcuts = systemShortcuts, .hotKeys = hotKeys, .menuItemUsing = [](const Shortcut& shortcut) {
             return shortcut == menuCombination ? std::optional<std::string>("设置…") : std::nullopt;
         }}};
};

TEST_F(RecorderTest, DecidesByKeyAndModifiers) {
    struct Row {
        Key key;
        Modifiers modifiers;
        Outcome outcome;
    };
    constexpr Key f5{96};
    const std::vector<Row> rows{
        {Key::escape, Modifiers::none, Outcome::ended},
        {Key::escape, Modifiers::command, Outcome::stored},
        {Key::deleteKey, Modifiers::none, Outcome::cleared},
        {Key::forwardDelete, Modifiers::none, Outcome::cleared},
        {Key::deleteKey, Modifiers::control, Outcome::stored},
        {Key::a, Modifiers::none, Outcome::beep},
        {Key::a, Modifiers::shift, Outcome::beep},
        {Key::up, Modifiers::shift, Outcome::beep},
        {Key::escape, Modifiers::shift, Outcome::beep},
        {f5, Modifiers::none, Outcome::stored},
        {f5, Modifiers::shift, Outcome::stored},
        {Key::a, Modifiers::option, Outcome::stored},
        {Key::a, Modifiers::function, Outcome::stored},
    };
    for (const auto& row : rows) {
        registry.setShortcut(commandShiftW, plain);
        recorder.startRecording();
        EXPECT_EQ(press(row.key, row.modifiers).kind, row.outcome) << row.key.rawValue;
        EXPECT_EQ(recorder.isRecording().value(), row.outcome == Outcome::beep);
        const auto expected = row.outcome == Outcome::stored    ? std::optional(Shortcut(row.key, row.modifiers))
                              : row.outcome == Outcome::cleared ? std::nullopt
                                                                : std::optional(commandShiftW);
        EXPECT_EQ(registry.getShortcut(plain), expected) << row.key.rawValue;
        recorder.endRecording();
    }
}

TEST_F(RecorderTest, IgnoresLockKeysAndKeysWithoutANumber) {
    constexpr int capsLock = 1024;
    recorder.startRecording();
    EXPECT_EQ(recorder.handleKeyPress(std::nullopt, 256).kind, Outcome::ignored);
    EXPECT_EQ(press(Key::a, Modifiers::none, capsLock).kind, Outcome::beep);
    EXPECT_EQ(press(Key::t, commandShift, capsLock).kind, Outcome::stored);
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
}

TEST_F(RecorderTest, AMenuItemKeepsItsCombination) {
    recorder.startRecording();
    const auto outcome = press(menuCombination.key(), menuCombination.modifiers());
    ASSERT_EQ(outcome.kind, Outcome::alert);
    EXPECT_EQ(outcome.alert->kind, Alert::usedByMenuItem);
    EXPECT_NE(outcome.alert->message.find("“设置…”"), std::string::npos);
    EXPECT_EQ(outcome.alert->forceUseButton, std::nullopt);
    EXPECT_TRUE(recorder.isRecording().value());
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
}

TEST_F(RecorderTest, OptionAloneIsRefusedWhereTheDesktopRefusesIt) {
    hotKeys.isOptionAloneAllowed = false;
    recorder.startRecording();
    for (const auto modifiers : {Modifiers::option, Modifiers::option | Modifiers::shift}) {
        const auto outcome = press(Key::a, modifiers);
        ASSERT_EQ(outcome.kind, Outcome::alert);
        EXPECT_EQ(outcome.alert->kind, Alert::disallowed);
    }
    EXPECT_EQ(press(Key::a, Modifiers::option | Modifiers::control).kind, Outcome::stored);
}

TEST_F(RecorderTest, ASystemShortcutMayBeUsedAnyway) {
    recorder.startRecording();
    const auto outcome = press(systemCombination.key(), systemCombination.modifiers());
    ASSERT_EQ(outcome.kind, Outcome::alert);
    EXPECT_EQ(outcome.alert->kind, Alert::usedBySystem);
    EXPECT_TRUE(outcome.alert->forceUseButton);
    EXPECT_FALSE(outcome.alert->informativeText.empty());
    EXPECT_TRUE(recorder.isRecording().value());

    EXPECT_EQ(recorder.forceUse().kind, Outcome::stored);
    EXPECT_EQ(registry.getShortcut(plain), systemCombination);
    EXPECT_FALSE(recorder.isRecording().value());
}

TEST_F(RecorderTest, SaysSoWhenTheCombinationCannotBeStored) {
    std::filesystem::remove_all(directory.path());
    std::ofstream(directory.path()) << "in the way";
    recorder.startRecording();
    const auto outcome = press(Key::t, commandShift);
    ASSERT_EQ(outcome.kind, Outcome::alert);
    EXPECT_EQ(outcome.alert->kind, Alert::notStored);
    EXPECT_NE(outcome.alert->message, "");
    EXPECT_TRUE(recorder.isRecording().value());
}

TEST_F(RecorderTest, RegisteredCombinationsCanBePressedWhileRecording) {
    registry.setShortcut(commandShiftT, withDefault);
    const auto subscription = registry.recorderActiveStatusDidChange().onDidChange(
        [&](bool isActive) { journal.add(isActive ? "active" : "inactive"); });
    journal.take();
    recorder.startRecording();
    EXPECT_EQ(journal.take(), (Events{"suspend", "active"}));
    press(Key::s, commandShift);
    EXPECT_TRUE(hotKeys.isRegistered(commandShiftT));
    EXPECT_TRUE(hotKeys.isRegistered(commandShiftS));
    EXPECT_EQ(journal.events().back(), "inactive");
}

TEST_F(RecorderTest, FollowsChangesOfItsNameOnly) {
    registry.setShortcut(commandShiftS, withDefault);
    EXPECT_EQ(recorder.text().value(), "");
    EXPECT_FALSE(recorder.showsClearButton());
    registry.setShortcut(commandShiftT, plain);
    EXPECT_EQ(recorder.text().value(), "Super+Shift+T");
    EXPECT_TRUE(recorder.showsClearButton());
    EXPECT_EQ(recorder.clear().kind, Outcome::cleared);
    EXPECT_EQ(recorder.text().value(), "");
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
}

}  // namespace
}  // namespace ovrin
