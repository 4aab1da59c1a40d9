#include "shortcuts/registry.h"

#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "shortcut_fixture.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::KeyDirection;
using KeyboardShortcuts::Name;
using KeyboardShortcuts::RegistrationState;
using KeyboardShortcuts::Shortcut;
using KeyboardShortcuts::ShortcutChange;

const std::string plainKey = "KeyboardShortcuts_plain";
const std::string defaultKey = "KeyboardShortcuts_withDefault";
const std::string storedT = R"({"carbonKeyCode":17,"carbonModifiers":768})";

const RegistrationState works{.kind = RegistrationState::Kind::works};

RegistrationState refused(const std::string& reason) {
    return {.kind = RegistrationState::Kind::refused, .reason = reason};
}

using RegistryTest = ShortcutTest;

TEST_F(RegistryTest, StoresACombinationAsJsonText) {
    registry.setShortcut(commandShiftT, plain);
    EXPECT_EQ(stored(plainKey), storedT);
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
    EXPECT_EQ(registry.shortcutDisplay(plain), "Super+Shift+T");
}

TEST_F(RegistryTest, WhatDoesNotDecodeIsNoShortcut) {
    for (const char* text :
         {"", "17", "{}", "[17,768]", R"({"carbonKeyCode":17})", R"({"carbonKeyCode":"17","carbonModifiers":768})",
          R"({"carbonKeyCode":1.5,"carbonModifiers":768})", R"({"carbonKeyCode":99999999999,"carbonModifiers":768})",
          R"({"carbonKeyCode":17,"carbonModifiers":768)"}) {
        defaults.setString(plainKey, text);
        EXPECT_EQ(registry.getShortcut(plain), std::nullopt) << text;
    }
    defaults.setBoolean(plainKey, true);
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
    defaults.setString(plainKey, R"({ "carbonModifiers": 768, "other": 1, "carbonKeyCode": 17 })");
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
}

TEST_F(RegistryTest, ADefaultIsStoredOnlyWhereNothingIsStored) {
    registry.add(withDefault);
    EXPECT_EQ(stored(defaultKey), storedT);

    registry.setShortcut(std::nullopt, withDefault);
    EXPECT_EQ(stored(defaultKey), false);
    registry.add(withDefault);
    EXPECT_EQ(stored(defaultKey), false);
    EXPECT_EQ(registry.getShortcut(withDefault), std::nullopt);

    registry.setShortcut(commandShiftS, withDefault);
    registry.add(withDefault);
    EXPECT_EQ(registry.getShortcut(withDefault), commandShiftS);

    defaults.setString(defaultKey, "damaged");
    registry.add(withDefault);
    EXPECT_EQ(stored(defaultKey), "damaged");
}

TEST_F(RegistryTest, ClearingANameWithoutDefaultLeavesNothingStored) {
    registry.setShortcut(commandShiftT, plain);
    registry.setShortcut(std::nullopt, plain);
    EXPECT_EQ(stored(plainKey), nullptr);
    EXPECT_FALSE(hotKeys.isRegistered(commandShiftT));
}

TEST_F(RegistryTest, EveryChangeIsAnnouncedEvenOneThatSetsTheSame) {
    const auto subscription =
        registry.shortcutByNameDidChange().onDidChange([&](const ShortcutChange& change) { journal.add(change.name); });
    registry.setShortcut(commandShiftT, plain);
    registry.setShortcut(commandShiftT, plain);
    registry.setShortcut(std::nullopt, plain);
    registry.setShortcut(std::nullopt, plain);
    EXPECT_EQ(journal.events(),
              (Events{"register plain Super+Shift+T", "plain", "plain", "unregister Super+Shift+T", "plain"}));
}

TEST_F(RegistryTest, HandlersAreCalledInTheOrderTheyWereAdded) {
    registry.setShortcut(commandShiftT, plain);
    registry.onKeyDown(plain, add("first"));
    registry.onKeyDown(plain, add("second"));
    registry.onKeyUp(plain, add("up"));
    journal.take();
    hotKeys.press(commandShiftT);
    EXPECT_EQ(journal.take(), (Events{"first", "second"}));
    hotKeys.release(commandShiftT);
    EXPECT_EQ(journal.take(), (Events{"up"}));
}

TEST_F(RegistryTest, TwoNamesWithTheSameCombinationBothFire) {
    const Name other{.rawValue = "other"};
    registry.onKeyDown(plain, add("plain"));
    registry.onKeyDown(other, add("other"));
    registry.setShortcut(commandShiftT, plain);
    registry.setShortcut(commandShiftT, other);
    EXPECT_EQ(journal.take(), (Events{"register plain Super+Shift+T"}));
    hotKeys.press(commandShiftT);
    EXPECT_EQ(journal.take(), (Events{"plain", "other"}));

    // The one goes on working when the other gives the combination up.
    registry.setShortcut(commandShiftS, plain);
    journal.take();
    hotKeys.press(commandShiftT);
    EXPECT_EQ(journal.take(), (Events{"other"}));
    registry.setShortcut(std::nullopt, other);
    EXPECT_FALSE(hotKeys.press(commandShiftT));
}

TEST_F(RegistryTest, AHandlerMayChangeTheRegistry) {
    registry.setShortcut(commandShiftT, plain);
    registry.onKeyDown(plain, [this] {
        registry.onKeyDown(plain, add("added meanwhile"));
        registry.setShortcut(std::nullopt, plain);
    });
    hotKeys.press(commandShiftT);
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
}

TEST_F(RegistryTest, ARefusedCombinationIsStoredAndReportedInOneLine) {
    hotKeys.takenByOthers.insert(commandShiftT);
    registry.setShortcut(commandShiftT, plain);
    EXPECT_EQ(journal.take(), (Events{"Error registering hotkey Super+Shift+T: taken"}));
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
    EXPECT_EQ(registry.registrationState(plain).value(), refused("taken"));

    hotKeys.takenByOthers.clear();
    registry.onKeyDown(plain, add("down"));
    EXPECT_EQ(registry.registrationState(plain).value(), works);
    EXPECT_TRUE(hotKeys.press(commandShiftT));
}

TEST_F(RegistryTest, ACombinationThatTheKeyboardLackedWorksOnceItHasIt) {
    registry.setShortcut(commandShiftT, plain);
    registry.onKeyDown(plain, add("down"));
    journal.take();
    hotKeys.fail(commandShiftT, "no such key");
    EXPECT_EQ(journal.take(), (Events{"Error registering hotkey Super+Shift+T: no such key"}));
    EXPECT_EQ(registry.registrationState(plain).value(), refused("no such key"));
    hotKeys.changeKeyboard();
    EXPECT_EQ(registry.registrationState(plain).value(), works);
    EXPECT_TRUE(hotKeys.press(commandShiftT));
}

TEST_F(RegistryTest, TheStateOfANameFollowsAnswersThatComeLate) {
    const auto& state = registry.registrationState(plain);
    EXPECT_EQ(state.value(), RegistrationState());
    hotKeys.asksItsUser = true;
    registry.setShortcut(commandShiftT, plain);
    registry.onKeyDown(plain, add("down"));
    EXPECT_EQ(state->kind, RegistrationState::Kind::unknown);
    hotKeys.describe(commandShiftT);
    EXPECT_EQ(state.value(), works);

    registry.setShortcut(commandShiftS, plain);
    EXPECT_EQ(state->kind, RegistrationState::Kind::unknown);
    hotKeys.fail(commandShiftS, "denied");
    EXPECT_EQ(state.value(), refused("denied"));
    // Asking once more is not yet an answer.
    registry.synchronize();
    EXPECT_EQ(state.value(), refused("denied"));
    hotKeys.describe(commandShiftS);
    EXPECT_EQ(state.value(), works);
    registry.setShortcut(std::nullopt, plain);
    EXPECT_EQ(state.value(), RegistrationState());
}

TEST_F(RegistryTest, WhereTheDesktopChoosesTheKeysTheyAreShown) {
    registry.setShortcut(commandShiftT, plain);
    journal.take();
    const auto subscription =
        registry.shortcutByNameDidChange().onDidChange([&](const ShortcutChange& change) { journal.add(change.name); });
    hotKeys.describe(commandShiftT, "Ctrl+Alt+T");
    EXPECT_EQ(registry.shortcutDisplay(plain), "Ctrl+Alt+T");
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
    hotKeys.describe(commandShiftT, "Ctrl+Alt+T");
    EXPECT_EQ(journal.take(), Events{"plain"});
    registry.setShortcut(commandShiftS, plain);
    EXPECT_EQ(registry.shortcutDisplay(plain), "Super+Shift+S");
}

TEST_F(RegistryTest, TheStateIsTheLastAnswerWhileShortcutsRest) {
    hotKeys.takenByOthers.insert(commandShiftT);
    registry.onKeyDown(plain, add("down"));
    registry.setShortcut(commandShiftT, plain);
    journal.take();
    const auto subscription = registry.registrationState(plain).onDidChange([&](const auto&) { journal.add("state"); });
    registry.recorderDidBegin();
    registry.suspend();
    registry.recorderDidEnd();
    registry.resume();
    EXPECT_EQ(journal.take(), (Events{"suspend", "resume"}));

    // What is recorded fires once the recorder gives the keyboard back.
    registry.recorderDidBegin();
    registry.setShortcut(commandShiftS, plain);
    EXPECT_EQ(registry.registrationState(plain).value(), works);
    EXPECT_FALSE(hotKeys.press(commandShiftS));
    registry.recorderDidEnd();
    EXPECT_TRUE(hotKeys.press(commandShiftS));
}

TEST_F(RegistryTest, TakesOverWhatAnotherProcessHasStored) {
    registry.add(withDefault);
    registry.setShortcut(commandShiftS, plain);
    for (const Name& name : {plain, withDefault}) registry.onKeyDown(name, add(name.rawValue));
    DefaultsStore another(file);
    another.setString(plainKey, storedT);
    another.setBoolean(defaultKey, false);
    journal.take();
    const auto subscription =
        registry.shortcutByNameDidChange().onDidChange([&](const ShortcutChange& change) { journal.add(change.name); });
    registry.synchronize();
    EXPECT_THAT(journal.take(), testing::IsSupersetOf({"plain", "withDefault"}));
    registry.synchronize();
    EXPECT_EQ(journal.take(), Events());
    EXPECT_FALSE(hotKeys.isRegistered(commandShiftS));
    EXPECT_TRUE(hotKeys.press(commandShiftT));
    EXPECT_EQ(journal.take(), (Events{"plain"}));
    another.remove({plainKey});
    registry.synchronize();
    EXPECT_FALSE(hotKeys.isRegistered(commandShiftT));
}

TEST_F(RegistryTest, WhileAMenuIsOpenKeyEventsStandInForHotKeys) {
    registry.setShortcut(commandShiftT, plain);
    registry.onKeyDown(plain, add("down"));
    journal.take();
    EXPECT_FALSE(registry.handleKeyEvent(KeyDirection::down, commandShiftT));
    registry.menuTrackingDidBegin();
    EXPECT_TRUE(registry.handleKeyEvent(KeyDirection::down, commandShiftT));
    EXPECT_FALSE(registry.handleKeyEvent(KeyDirection::down, commandShiftS));
    hotKeys.press(commandShiftT);  // the same press once more
    EXPECT_EQ(journal.take(), (Events{"down"}));
    registry.menuTrackingDidEnd();
    hotKeys.press(commandShiftT);
    EXPECT_EQ(journal.take(), (Events{"down"}));
}

TEST_F(RegistryTest, WhatCannotBeStoredChangesNothing) {
    DefaultsStore broken(file / "below a file" / "preferences.json");
    std::ofstream(file) << "{}";
    KeyboardShortcuts::Registry other(broken, hotKeys, layout, [](const std::string&) {});
    EXPECT_THROW(other.setShortcut(commandShiftS, plain), files::FileError);
    EXPECT_FALSE(hotKeys.isRegistered(commandShiftS));
    // Defaults work all the same.
    EXPECT_THROW(other.add(withDefault), files::FileError);
    other.onKeyDown(withDefault, add("down"));
    EXPECT_TRUE(hotKeys.isRegistered(commandShiftT));
}

TEST_F(RegistryTest, GivesEverythingBackWhenItGoes) {
    {
        KeyboardShortcuts::Registry other(defaults, hotKeys, layout, [](const std::string&) {});
        other.setShortcut(commandShiftT, plain);
    }
    EXPECT_FALSE(hotKeys.isRegistered(commandShiftT));
}

}  // namespace
}  // namespace ovrin
