#include "platform/linux/x11/x11_synthetic_keyboard.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "fakes/x_test_server.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {
namespace {

// A program that has the keyboard, and what arrives there.
class X11SimulateKeyboardTest : public testing::Test {
protected:
    void SetUp() override {
        if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        server = std::make_unique<XTestServer>();
        program = connectToX11(server->display());
        window = xcb_generate_id(program.get());
        constexpr std::uint32_t events =
            XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_EXPOSURE;
        xcb_create_window(program.get(), XCB_COPY_FROM_PARENT, window, server->root(), 0, 0, 100, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(program.get(), window);
        xcb_set_input_focus(program.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        received();
        keyboard = std::make_unique<X11SimulateKeyboard>(server->display());
    }

    void focus(xcb_window_t target) {
        xcb_set_input_focus(program.get(), XCB_INPUT_FOCUS_NONE, target, XCB_CURRENT_TIME);
        received();
    }

    void setProperty(const char* name, std::uint32_t value) {
        xcb_change_property(program.get(), XCB_PROP_MODE_REPLACE, window, atomNamed(program.get(), name),
                            XCB_ATOM_CARDINAL, 32, 1, &value);
        received();
    }

    // "54 with 4": the key codes pressed so far, each with the modifiers that counted.
    std::vector<std::string> received() {
        const X11Reply<xcb_get_input_focus_reply_t> roundTrip(
            xcb_get_input_focus_reply(program.get(), xcb_get_input_focus(program.get()), nullptr));
        std::vector<std::string> presses;
        while (const X11Event event{xcb_poll_for_event(program.get())}) {
            if (event->response_type != XCB_KEY_PRESS) continue;
            const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(*event);
            presses.push_back(std::to_string(press.detail) + " with " + std::to_string(press.state));
        }
        return presses;
    }

    static constexpr const char* controlKey = "37 with 0";
    static constexpr const char* controlC = "54 with 4";
    static constexpr const char* controlV = "55 with 4";

    std::unique_ptr<XTestServer> server;
    xcb_window_t window = XCB_WINDOW_NONE;
    X11Connection program{nullptr, &xcb_disconnect};
    std::unique_ptr<X11SimulateKeyboard> keyboard;
};

TEST_F(X11SimulateKeyboardTest, KeysStillHeldFromAShortcutDoNotChangeTheCombination) {
    ASSERT_TRUE(keyboard->isTrusted());
    for (const xcb_keycode_t key : {keycode::leftSuper, keycode::leftShift, keycode::t}) server->press(key);
    server->synchronize();
    received();
    keyboard->copy();
    EXPECT_EQ(received(), (std::vector<std::string>{controlKey, controlC}));
    // The user lets go of them later.
    for (const xcb_keycode_t key : {keycode::t, keycode::leftShift, keycode::leftSuper}) server->release(key);
    server->synchronize();
    keyboard->paste();
    EXPECT_EQ(received(), (std::vector<std::string>{controlKey, controlV}));
}

TEST_F(X11SimulateKeyboardTest, TheKeyIsTheOneThatTypesTheLetter) {
    server->setLayouts("us(dvorak)");
    keyboard->copy();
    EXPECT_EQ(received(), (std::vector<std::string>{controlKey, "31 with 4"}));  // the place of I types c
    server->setLayouts("ru");
    keyboard->copy();
    EXPECT_EQ(received(), (std::vector<std::string>{controlKey, controlC}));  // no key types c
}

TEST_F(X11SimulateKeyboardTest, KnowsWhetherAnotherProgramHasTheKeyboard) {
    // A window manager holds the keyboard itself between two programs.
    EXPECT_FALSE(keyboard->reachesOtherProgram());
    setProperty("WM_STATE", 1);
    EXPECT_TRUE(keyboard->reachesOtherProgram());
    const xcb_window_t field = xcb_generate_id(program.get());
    xcb_create_window(program.get(), XCB_COPY_FROM_PARENT, field, window, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(program.get(), field);
    focus(field);
    EXPECT_TRUE(keyboard->reachesOtherProgram());
    setProperty("_NET_WM_PID", static_cast<std::uint32_t>(getpid()));
    EXPECT_FALSE(keyboard->reachesOtherProgram());
    for (const xcb_window_t nobody : {xcb_window_t{XCB_INPUT_FOCUS_NONE}, server->root()}) {
        focus(nobody);
        EXPECT_FALSE(keyboard->reachesOtherProgram());
    }
}

void takePrimary(const X11Connection& by, xcb_window_t owner) {
    xcb_set_selection_owner(by.get(), owner, XCB_ATOM_PRIMARY, XCB_CURRENT_TIME);
    X11Reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(by.get(), xcb_get_input_focus(by.get()), nullptr));
}

TEST_F(X11SimulateKeyboardTest, BesideTheServerProgramsAreReadByWhatIsSelected) {
    using enum SimulateKeyboard::Selection;
    X11SimulateKeyboard inWayland(server->display(), X11SimulateKeyboard::Reach::x11Programs);
    setProperty("WM_STATE", 1);
    EXPECT_TRUE(inWayland.isTrusted());
    takePrimary(program, window);
    EXPECT_EQ(inWayland.selection(), copied);
    focus(XCB_INPUT_FOCUS_NONE);
    EXPECT_FALSE(inWayland.isTrusted());
    EXPECT_TRUE(inWayland.reachesOtherProgram());
    EXPECT_EQ(inWayland.selection(), shown);
    takePrimary(program, XCB_WINDOW_NONE);
    EXPECT_EQ(inWayland.selection(), absent);
}

TEST_F(X11SimulateKeyboardTest, PressesNothingInATerminal) {
    using enum SimulateKeyboard::Selection;
    setProperty("WM_STATE", 1);
    const auto setClass = [this](const std::string& parts) {
        xcb_change_property(program.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(parts.size()), parts.data());
        received();
    };
    for (const std::string part : {"editor", "determined", "stern", "console-log"}) {
        setClass(part + '\0' + part + '\0');
        EXPECT_EQ(keyboard->selection(), copied) << part;
    }
    for (const std::string part : {"xterm", "gnome-terminal-server", "Alacritty", "com.mitchellh.ghostty", "st"}) {
        setClass("any" + std::string(1, '\0') + part + '\0');
        EXPECT_EQ(keyboard->selection(), absent) << part;
    }
    keyboard->copy();
    keyboard->paste();
    EXPECT_EQ(received(), std::vector<std::string>{});

    takePrimary(program, window);
    EXPECT_EQ(keyboard->selection(), shown);
    const X11Connection other = connectToX11(server->display());
    const xcb_window_t elsewhere = xcb_generate_id(other.get());
    xcb_create_window(other.get(), 0, elsewhere, server->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    takePrimary(other, elsewhere);
    EXPECT_EQ(keyboard->selection(), absent);
}

}  // namespace
}  // namespace ovrin
