// Hot keys as passive key grabs of an X server.
//
// A connection of its own is read by a thread that sleeps until the server says something and hands it to the main
// loop; everything else happens on the main thread. Lock keys don't matter: each combination is grabbed with every
// state of Caps Lock, Num Lock and Scroll Lock. The server is told not to make up releases for held keys. A keyboard
// that changes gets its grabs anew. When the server goes away every hot key fails with a reason.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <xcb/xcb.h>

#include "base/event_loop.h"
#include "platform/hot_keys.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/x11_keyboard.h"

namespace ovrin {

class X11HotKeys final : public HotKeys {
public:
    // display: such as ":0"; null for the one the environment names. Throws Error when no server answers there or it
    // tells nothing of its keyboard. The loop belongs to the calling thread.
    X11HotKeys(EventLoop& mainLoop, const char* display);
    X11HotKeys(const X11HotKeys&) = delete;
    X11HotKeys& operator=(const X11HotKeys&) = delete;
    ~X11HotKeys() override;

    void setEvents(HotKeyEvents events) override;
    void setHotKeys(const std::vector<HotKey>& hotKeys) override;
    void suspend() override;
    void resume() override;
    bool allowsOptionAlone() const override { return true; }

private:
    // One grab: a key with the modifiers, in all lock states.
    struct Grab {
        std::uint16_t modifiers = 0;
        xcb_keycode_t keyCode = 0;
        friend bool operator==(const Grab&, const Grab&) = default;
    };
    struct Grabbed {
        KeyboardShortcuts::Shortcut shortcut;
        std::vector<Grab> grabs;
    };

    void readEvents();
    void wakeReader();
    void handle(const xcb_generic_event_t& event);
    void handleKeyPress(const xcb_key_press_event_t& event);
    void handleKeyRelease(xcb_keycode_t keyCode);
    void handleKeyboardChange();
    void handleLostConnection();
    struct Failure {
        std::string name;
        std::string reason;
    };
    void tellOf(const std::vector<Failure>& failures) const;
    std::vector<Failure> grabAll();
    void ungrabAll();

    std::vector<Grab> grabsFor(const KeyboardShortcuts::Shortcut& shortcut) const;
    std::vector<std::uint16_t> modifierStates(std::uint16_t modifiers) const;
    void grab(const std::vector<Grab>& grabs);
    void ungrab(const std::vector<Grab>& grabs);
    void giveBackAllBut(const std::vector<HotKey>& wanted);

    EventLoop& mainLoop_;
    X11Connection connection_;
    std::uint8_t keyboardEvent_;
    X11Keyboard keyboard_;
    std::vector<xcb_window_t> roots_;
    xcb_window_t mailbox_ = XCB_WINDOW_NONE;  // a window that only serves to wake the reader

    HotKeyEvents events_;
    std::map<std::string, Grabbed> hotKeys_;  // by their names; those in force alone
    // Keys that went down and have not come up, with the hot key that the press was. The server's grab begins with the
    // first of them, and with its release the others get out of sight.
    std::map<xcb_keycode_t, std::optional<std::string>> heldKeys_;
    xcb_keycode_t grabbingKey_ = 0;
    bool isKeyboardChangePending_ = false;
    bool isSuspended_ = false;

    std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
    std::thread reader_;  // the last member: it uses the others
};

}  // namespace ovrin
