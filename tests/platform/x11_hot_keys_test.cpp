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
#include "fakes/x_test_server.h"
#include "platform/linux/x11/x11_keyboard_layout.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;
using Events = std::vector<std::string>;

constexpr Shortcut commandShiftT(Key::t, Modifiers::command | Modifiers::shift);
constexpr Shortcut commandS(Key::s, Modifiers::command);
constexpr Shortcut f5(Key{96}, Modifiers::none);

const std::vector<xcb_keycode_t> commandShiftTKeys{keycode::leftSuper, keycode::leftShift, keycode::t};

class X11HotKeysTest : public testing::Test {
protected:
    void SetUp() override {
        if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        server = std::make_unique<XTestServer>();
        hotKeys = std::make_unique<X11HotKeys>(loop, server->display());
        hotKeys->setEvents({
            .keyDown = [this](const std::string& name) { journal.add("down " + name); },
            .keyUp = [this](const std::string& name) { journal.add("up " + name); },
            .described = [](const std::string& /*name*/, const std::string& keys) { EXPECT_EQ(keys, ""); },
            .failed = [this](const std::string& name, const std::string&) { journal.add("failed " + name); },
            .keyboardChanged = [this] { ++keyboardChanges; },
        });
        set({});
    }

    // Called "1", "2" and so on.
    static std::vector<HotKey> numbered(const std::vector<Shortcut>& shortcuts) {
        std::vector<HotKey> hotKeys;
        for (const Shortcut& shortcut : shortcuts) {
            hotKeys.push_back({std::to_string(hotKeys.size() + 1), "title", "command", shortcut});
        }
        return hotKeys;
    }

    // And the fence.
    void set(const std::vector<Shortcut>& shortcuts) {
        std::vector<HotKey> wanted = numbered(shortcuts);
        wanted.push_back({"99", "fence", "command", f5});
        hotKeys->setHotKeys(wanted);
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

    // Of a program without any other hot key.
    static std::string refusal(HotKeys& from, const Shortcut& shortcut) {
        std::string reason;
        HotKeyEvents events;
        events.failed = [&](const std::string& /*name*/, const std::string& text) { reason = text; };
        from.setEvents(events);
        from.setHotKeys(numbered({shortcut}));
        from.setEvents({});
        return reason;
    }

    VirtualLoop loop;
    Journal journal;
    std::unique_ptr<XTestServer> server;
    std::unique_ptr<X11HotKeys> hotKeys;
    int keyboardChanges = 0;
};

TEST_F(X11HotKeysTest, FiresForItsCombinationOnly) {
    set({commandShiftT});
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
    server->type({keycode::leftSuper, keycode::t});
    server->type({keycode::leftSuper, keycode::leftShift, keycode::s});
    EXPECT_EQ(eventsSoFar(), Events{});
}

TEST_F(X11HotKeysTest, FiresWhateverTheLockKeysAre) {
    set({commandShiftT});
    for (const auto lock : {keycode::numLock, keycode::capsLock}) {
        server->type({lock});
        server->type(commandShiftTKeys);
        EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
    }
}

TEST_F(X11HotKeysTest, AHeldKeyIsOneCall) {
    set({commandShiftT});
    server->press(keycode::leftSuper);
    server->press(keycode::leftShift);
    server->hold(keycode::t);
    server->type({keycode::t});
    server->release(keycode::leftShift);
    server->release(keycode::leftSuper);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1", "down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, AKeyReleasedOutOfSightFiresAgain) {
    set({commandShiftT, commandS});
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
    X11HotKeys third(loop, server->display());
    EXPECT_EQ(refusal(other, commandShiftT), "");
    EXPECT_NE(refusal(third, commandShiftT).find("其他程序"), std::string::npos);
    EXPECT_EQ(refusal(third, commandS), "");
    set({commandShiftT});
    EXPECT_EQ(journal.take(), Events{"failed 1"});
    other.setHotKeys({});
    set({commandShiftT});
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
    set({commandShiftT});
    server->type(commandShiftTKeys);
    server->synchronize();
    set({});
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), Events{});
}

TEST_F(X11HotKeysTest, WhileSuspendedOtherProgramsGetTheKeys) {
    X11HotKeys other(loop, server->display());
    set({commandShiftT, commandS});
    server->type(commandShiftTKeys);
    server->synchronize();
    hotKeys->suspend();
    hotKeys->suspend();
    EXPECT_EQ(refusal(other, f5), "");
    EXPECT_EQ(refusal(other, commandShiftT), "");
    hotKeys->setHotKeys(numbered({commandShiftT, commandS}));
    set({commandShiftT, commandS});
    hotKeys->resume();
    server->type({keycode::leftSuper, keycode::s});
    EXPECT_EQ(eventsSoFar(), (Events{"failed 1", "down 2", "up 2"}));
}

TEST_F(X11HotKeysTest, AModifierThatMovesTakesTheHotKeysAlong) {
    set({commandShiftT});
    // Super from the fourth modifier to the third.
    std::vector<xcb_keycode_t> modifiers{keycode::leftShift, keycode::capsLock,  37, 64,
                                         keycode::numLock,   keycode::leftSuper, 0,  0};
    std::free(xcb_set_modifier_mapping_reply(
        server->connection(), xcb_set_modifier_mapping(server->connection(), 1, modifiers.data()), nullptr));
    loop.runUntil([this] { return keyboardChanges > 0; });
    server->type(commandShiftTKeys);
    EXPECT_EQ(eventsSoFar(), (Events{"down 1", "up 1"}));
}

TEST_F(X11HotKeysTest, FiresInEveryLayoutGroupAndTheLayoutNamesItsKeys) {
    const X11KeyboardLayout layout(server->display());
    EXPECT_EQ(layout.character(Key::t), "t");
    EXPECT_EQ(layout.key(keycode::t), Key::t);
    EXPECT_EQ(layout.key(keycode::leftShift), std::nullopt);

    set({commandShiftT});
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
    set({commandShiftT});
    const X11KeyboardLayout layout(server->display());
    server->stop();
    loop.runUntil([this] { return journal.events().size() == 2; });
    EXPECT_EQ(journal.events(), (Events{"failed 1", "failed 99"}));
    EXPECT_NE(refusal(*hotKeys, commandS), "");
    EXPECT_EQ(layout.character(Key::t), "t");
    set({});
    EXPECT_THROW(X11HotKeys(loop, server->display()), Error);
}

}  // namespace
}  // namespace ovrin
