#include "platform/linux/x11/x11_hot_keys.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/virtual_loop.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "fakes/x_test_server.h"
#include "platform/linux/x11/x11_keyboard_layout.h"
#include "platform/linux/x11/xcb_xkb.h"
#include "shortcuts/registry.h"
#include "storage/defaults_store.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;
using Events = std::vector<std::string>;

constexpr Shortcut commandShiftT(Key::t, Modifiers::command | Modifiers::shift);
constexpr Shortcut commandS(Key::s, Modifiers::command);
constexpr Shortcut f5(Key{96}, Modifiers::none);
constexpr HotKeyId first{1}, second{2}, fence{99};

const std::vector<xcb_keycode_t> commandShiftTKeys{keycode::leftSuper, keycode::leftShift, keycode::t};

class X11HotKeysTest : public testing::Test {
protected:
    void SetUp() override {
        if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        server = std::make_unique<XTestServer>();
        hotKeys = std::make_unique<X11HotKeys>(loop, server->display());
        hotKeys->setEvents({
            .keyDown = [this](HotKeyId id) { add("down", id); },
            .keyUp = [this](HotKeyId id) { add("up", id); },
            .failed = [this](HotKeyId id, const std::string&) { add("failed", id); },
            .keyboardChanged = [this] { ++keyboardChanges; },
        });
        hotKeys->registerHotKey(fence, f5);
    }

    void add(const std::string& event, HotKeyId id) {
        journal.add(event + " " + std::to_string(static_cast<unsigned>(id)));
    }

    // What came of everything typed so far: events keep their order, so that the hot key typed last comes last.
    Events eventsSoFar() {
        server->type({keycode::f5});
        loop.runUntil([this] { return !journal.events().empty() && journal.events().back() == "up 99"; });
        loop.runPosted();
        auto events = journal.take();
        events.resize(events.size() - 2);
        return events;
    }

    static std::string refusal(HotKeys& from, const Shortcut& shortcut) {
        try {
            from.registerHotKey(second, shortcut);
        } catch (const Error& error) {
            return error.errorDescription();
        }
        return "";
    }

    VirtualLoop loop;
    Journal journal;
    std::unique_ptr<XTestServer> server;
    std::unique_ptr<X11HotKeys> hotKeys;
    int keyboardChanges = 0;
};

TEST_F(X11HotKeysTest, FiresForItsCombinationOnly) {
    hotKeys->registerHotKey(first, commandShiftT);
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
    server->type({keycode::leftSuper, keycode::t});
    server->type({keycode::leftSuper, keycode::leftShift, keycode::s});
    EXPECT_EQ(eventsSoFar(), Events{});
}

TEST_F(X11HotKeysTest, FiresWhateverTheLockKeysAre) {
    hotKeys->registerHotKey(first, commandShiftT);
    for (const auto lock : {keycode::numLock, keycode::capsLock}) {
        server->type({lock});
        server->type(commandShiftTKeys);
        EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
    }
}

TEST_F(X11HotKeysTest, AHeldKeyIsOneCall) {
    hotKeys->registerHotKey(first, commandShiftT);
    server->press(keycode::leftSuper);
    server->press(keycode::leftShift);
    server->hold(keycode::t);
    server->type({keycode::t});
    server->release(keycode::leftShift);
    server->release(keycode::leftSuper);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1", "down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, AKeyReleasedOutOfSightFiresAgain) {
    hotKeys->registerHotKey(first, commandShiftT);
    hotKeys->registerHotKey(second, commandS);
    server->press(keycode::leftSuper);
    server->press(keycode::leftShift);
    server->press(keycode::t);
    server->release(keycode::leftShift);
    server->press(keycode::s);    // while the first still holds the keyboard
    server->release(keycode::t);  // which it gives back here
    server->release(keycode::s);
    server->release(keycode::leftSuper);
    server->type({keycode::leftSuper, keycode::s});
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "down 2", "up 1", "down 2", "up 2"}));
}

TEST_F(X11HotKeysTest, ACombinationOfAnotherProgramIsRefusedAndFreeOnceGivenBack) {
    X11HotKeys other(loop, server->display());
    other.registerHotKey(first, commandShiftT);
    EXPECT_NE(refusal(*hotKeys, commandShiftT).find("其他程序"), std::string::npos);
    EXPECT_EQ(refusal(*hotKeys, commandS), "");
    other.unregisterHotKey(first);
    hotKeys->registerHotKey(first, commandShiftT);
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, ARefusedCombinationLeavesNothingBehind) {
    // Another program holds the combination with Num Lock on only.
    const auto holdWith = [this](std::uint16_t modifiers) {
        const std::unique_ptr<xcb_generic_error_t, FreeX11Memory> error(xcb_request_check(
            server->connection(), xcb_grab_key_checked(server->connection(), 0, server->root(), modifiers, keycode::s,
                                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        return error == nullptr;
    };
    ASSERT_TRUE(holdWith(XCB_MOD_MASK_4 | XCB_MOD_MASK_2));
    EXPECT_NE(refusal(*hotKeys, commandS), "");
    EXPECT_TRUE(holdWith(XCB_MOD_MASK_4));
}

TEST_F(X11HotKeysTest, WhatTheKeyboardLacksIsRefused) {
    EXPECT_NE(refusal(*hotKeys, Shortcut(Key{200}, Modifiers::command)), "");
    EXPECT_NE(refusal(*hotKeys, Shortcut(Key::t, Modifiers::function)), "");
}

TEST_F(X11HotKeysTest, AfterUnregisteringNothingFiresNotEvenWhatWasOnItsWay) {
    hotKeys->registerHotKey(first, commandShiftT);
    server->type(commandShiftTKeys);
    server->synchronize();
    hotKeys->unregisterHotKey(first);
    hotKeys->unregisterHotKey(first);
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), Events{});
}

TEST_F(X11HotKeysTest, WhileSuspendedOtherProgramsGetTheKeys) {
    X11HotKeys other(loop, server->display());
    hotKeys->registerHotKey(first, commandShiftT);
    hotKeys->registerHotKey(second, commandS);
    server->type(commandShiftTKeys);
    server->synchronize();
    hotKeys->suspend();
    hotKeys->suspend();
    EXPECT_EQ(refusal(other, commandShiftT), "");
    EXPECT_EQ(refusal(other, f5), "");
    other.unregisterHotKey(second);
    other.registerHotKey(second, commandShiftT);
    hotKeys->unregisterHotKey(fence);
    hotKeys->registerHotKey(fence, f5);
    hotKeys->resume();
    server->type({keycode::leftSuper, keycode::s});
    EXPECT_EQ(eventsSoFar(), (Events{"failed 1", "down 2", "up 2"}));
}

TEST_F(X11HotKeysTest, AModifierThatMovesTakesTheHotKeysAlong) {
    hotKeys->registerHotKey(first, commandShiftT);
    // Super from the fourth modifier to the third.
    std::vector<xcb_keycode_t> modifiers{keycode::leftShift, keycode::capsLock,  37, 64,
                                         keycode::numLock,   keycode::leftSuper, 0,  0};
    std::free(xcb_set_modifier_mapping_reply(
        server->connection(), xcb_set_modifier_mapping(server->connection(), 1, modifiers.data()), nullptr));
    EXPECT_EQ(eventsSoFar(), Events{});
    EXPECT_GE(keyboardChanges, 1);
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, FiresInEveryLayoutGroupAndTheLayoutNamesItsKeys) {
    const X11KeyboardLayout layout(server->display());
    EXPECT_EQ(layout.character(Key::t), "t");
    EXPECT_EQ(layout.key(keycode::t), Key::t);
    EXPECT_EQ(layout.key(keycode::leftShift), std::nullopt);

    hotKeys->registerHotKey(first, commandShiftT);
    server->setLayouts("us,ru");
    auto* const connection = server->connection();
    std::free(xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
    xcb_xkb_latch_lock_state(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, 1, 0, 0, 0);
    server->synchronize();
    EXPECT_EQ(layout.character(Key::t), "е");
    EXPECT_EQ(layout.snapshot()->character(Key::t), "е");
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, AServerThatDiesFailsEveryHotKey) {
    hotKeys->registerHotKey(first, commandShiftT);
    const X11KeyboardLayout layout(server->display());
    server->stop();
    loop.runUntil([this] { return journal.events().size() == 2; });
    EXPECT_EQ(journal.events(), (Events{"failed 1", "failed 99"}));
    EXPECT_NE(refusal(*hotKeys, commandS), "");
    EXPECT_EQ(layout.character(Key::t), "t");
    hotKeys->unregisterHotKey(first);
    EXPECT_THROW(X11HotKeys(loop, server->display()), Error);
}

TEST_F(X11HotKeysTest, ASuspendedRegistryLeavesItsCombinationsToOthers) {
    const TemporaryDirectory directory;
    DefaultsStore defaults(directory.path() / "preferences.json");
    const X11KeyboardLayout layout(server->display());
    X11HotKeys own(loop, server->display());
    KeyboardShortcuts::Registry registry(defaults, own, layout, [](const std::string&) {});
    const KeyboardShortcuts::Name name{.rawValue = "name", .defaultShortcut = commandShiftT};
    registry.add(name);
    registry.onKeyDown(name, [this] { journal.add("registry"); });

    server->type(commandShiftTKeys);
    loop.runUntil([this] { return !journal.events().empty(); });
    EXPECT_EQ(journal.take(), (Events{"registry"}));

    registry.suspend();
    hotKeys->registerHotKey(first, commandShiftT);
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));

    hotKeys->unregisterHotKey(first);
    registry.resume();
    server->type(commandShiftTKeys);
    loop.runUntil([this] { return !journal.events().empty(); });
    EXPECT_EQ(journal.take(), (Events{"registry"}));
}

}  // namespace
}  // namespace ovrin
