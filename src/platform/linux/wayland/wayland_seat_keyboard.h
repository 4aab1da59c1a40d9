// The keyboard of a Wayland seat as a program without a window hears of it: the keymap, and that it changes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

// Used by the thread that uses the connection, which outlives it.
class WaylandSeatKeyboard {
public:
    // Follows the seat's keyboard. keymapChanged: called with each keymap, in XKB's format of version 1; at first
    // before the constructor returns, if the seat has a keyboard.
    WaylandSeatKeyboard(WaylandConnection& connection, std::function<void(std::string)> keymapChanged);
    WaylandSeatKeyboard(const WaylandSeatKeyboard&) = delete;
    WaylandSeatKeyboard& operator=(const WaylandSeatKeyboard&) = delete;

    wl_seat* seat() const { return seat_.get(); }

private:
    struct Releases {
        void operator()(wl_seat* seat) const { wl_seat_release(seat); }
        void operator()(wl_keyboard* keyboard) const { wl_keyboard_release(keyboard); }
    };

    void follow(bool hasKeyboard);
    void takeKeymap(std::uint32_t format, int descriptor, std::uint32_t size) const;

    std::function<void(std::string)> keymapChanged_;
    std::unique_ptr<wl_seat, Releases> seat_;
    std::unique_ptr<wl_keyboard, Releases> keyboard_;
};

}  // namespace ovrin
