// The keyboard layout of a Wayland session, by the keymap of its keyboard. Which of several layouts the user types with
// is told to the window in front alone: the first counts. Where there is no keyboard, the US layout does.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_seat_keyboard.h"

namespace ovrin {

class WaylandKeyboardLayout final : public KeyboardLayout {
public:
    // Hears of changes when the connection's events are processed. Throws Error when no compositor answers, or it has
    // no seat.
    explicit WaylandKeyboardLayout(WaylandConnection& connection);

    std::optional<std::string> character(KeyboardShortcuts::Key key) const override { return layout_->character(key); }
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t nativeCode) const override {
        return layout_->key(nativeCode);
    }
    std::unique_ptr<const KeyboardLayout> snapshot() const override { return layout_->snapshot(); }

private:
    void read(const std::string& keymap);

    std::unique_ptr<const KeyboardLayout> layout_;
    WaylandSeatKeyboard keyboard_;
};

}  // namespace ovrin
