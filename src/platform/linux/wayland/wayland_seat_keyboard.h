// The keyboard of a Wayland seat as a program without a window hears of it: the keymap, and that it changes.
#pragma once

#include <cstdint>
#include <functional>
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
    ~WaylandSeatKeyboard();

    wl_seat* seat() const { return seat_; }

private:
    void follow(bool hasKeyboard);
    void takeKeymap(std::uint32_t format, int descriptor, std::uint32_t size) const;

    std::function<void(std::string)> keymapChanged_;
    wl_seat* seat_;
    wl_keyboard* keyboard_ = nullptr;
};

}  // namespace ovrin
