// The keyboard layout of an X server. Reads the keyboard once and again after the server has told of a change; asks
// only when it is asked, so that it costs nothing while idle. Where the server gives no answer, the US layout does.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/x11_keyboard.h"
#include "platform/us_keyboard_layout.h"

namespace ovrin {

class X11KeyboardLayout final : public KeyboardLayout {
public:
    // display: such as ":0"; null for the one the environment names. Throws Error when no server answers there.
    explicit X11KeyboardLayout(const char* display);

    std::optional<std::string> character(KeyboardShortcuts::Key key) const override;
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t nativeCode) const override;
    std::unique_ptr<const KeyboardLayout> snapshot() const override;

private:
    // The keyboard as it is now; null when the server has gone.
    const X11Keyboard* keyboard() const;
    std::uint32_t currentGroup() const;

    X11Connection connection_;
    std::uint8_t keyboardEvent_;
    mutable X11Keyboard keyboard_;
    USKeyboardLayout fallback_;
};

}  // namespace ovrin
