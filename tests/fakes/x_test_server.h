// A private X server without a screen, and a client of it that types on its keyboard.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include "base/error.h"
#include "fakes/child_process.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

// X key codes of the keyboard that the server starts with.
namespace keycode {
inline constexpr xcb_keycode_t f5 = 71, s = 39, t = 28, w = 25;
inline constexpr xcb_keycode_t leftShift = 50, leftSuper = 133, capsLock = 66, numLock = 77;
}  // namespace keycode

class XTestServer {
public:
    static bool isInstalled() { return ChildProcess::isInstalled("Xvfb"); }

    // screen: width, height and depth.
    explicit XTestServer(const std::string& screen = "640x480x24")
        // The server picks a free display and writes its number once it is ready.
        : server_(setup({"Xvfb", "-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp", "-noreset"})),
          display_(":" + server_.readLine()),
          connection_(xcb_connect(display(), nullptr), &xcb_disconnect) {
        if (xcb_connection_has_error(connection()) != 0) throw Error("no X server");
    }
    XTestServer(const XTestServer&) = delete;
    XTestServer& operator=(const XTestServer&) = delete;
    ~XTestServer() { stop(); }

    // As if the server had crashed.
    void stop() {
        if (!server_.isRunning()) return;
        server_.stop();
        unlink(("/tmp/.X" + display_.substr(1) + "-lock").c_str());
        unlink(("/tmp/.X11-unix/X" + display_.substr(1)).c_str());
    }

    const char* display() const { return display_.c_str(); }
    xcb_connection_t* connection() const { return connection_.get(); }
    xcb_window_t root() const { return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root; }

    void press(xcb_keycode_t key) const { fake(XCB_KEY_PRESS, key); }
    void release(xcb_keycode_t key) const { fake(XCB_KEY_RELEASE, key); }

    // Holds the key for as long as it takes the server, which is told to be quick about it, to repeat it some times.
    void hold(xcb_keycode_t key) const {
        constexpr std::uint16_t delay = 5, interval = 5, held = 60;  // milliseconds
        std::free(xcb_xkb_use_extension_reply(connection(), xcb_xkb_use_extension(connection(), 1, 0), nullptr));
        constexpr std::array<std::uint8_t, 32> noKeys{};
        xcb_xkb_set_controls(connection(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                             XCB_XKB_BOOL_CTRL_REPEAT_KEYS, delay, interval, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                             noKeys.data());
        press(key);
        fake(XCB_KEY_RELEASE, key, held);
    }

    // Presses the keys in order and releases them in reverse order.
    void type(const std::vector<xcb_keycode_t>& keys) const {
        for (const xcb_keycode_t key : keys) press(key);
        std::vector<xcb_keycode_t> held = keys;
        std::ranges::reverse(held);
        for (const xcb_keycode_t key : held) release(key);
    }

    // Returns when the server has done everything asked of it so far.
    void synchronize() const {
        std::free(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    }

    // Sets the layouts, such as "us,ru", as the user's settings would.
    void setLayouts(const std::string& layouts) const {
        ChildProcess(setup({"setxkbmap", "-display", display_, "-layout", layouts})).waitForEnd();
    }

private:
    static ChildProcess::Setup setup(std::vector<std::string> command) {
        return {.arguments = std::move(command), .environment = {"PATH=/usr/bin:/bin"}};
    }

    // The server does it after the delay, and what it is asked afterwards only then.
    void fake(std::uint8_t event, xcb_keycode_t key, std::uint32_t delay = 0) const {
        xcb_test_fake_input(connection(), event, key, delay, root(), 0, 0, 0);
        xcb_flush(connection());
    }

    ChildProcess server_;
    std::string display_;
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
};

}  // namespace ovrin
