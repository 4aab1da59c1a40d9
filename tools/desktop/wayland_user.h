// The user of a headless compositor: moves the pointer and types, by the virtual devices of wlroots' compositors or
// KWin's fake input. Every action returns once the compositor has handed it on. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <xkbcommon/xkbcommon.h>

#include "desktop/pixel_area.h"
#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

class WaylandUser {
public:
    enum class Button : std::uint8_t { left, right };

    // display: the compositor's socket. Throws Error where it has no virtual devices.
    explicit WaylandUser(const std::string& display);
    ~WaylandUser();
    WaylandUser(const WaylandUser&) = delete;
    WaylandUser& operator=(const WaylandUser&) = delete;

    // Points of the compositor's layout, whose outputs have to be there since before this user.
    void moveTo(PixelSpot spot);
    void press(Button button = Button::left);
    void release(Button button = Button::left);
    void click(PixelSpot spot, Button button = Button::left);
    void drag(PixelSpot from, PixelSpot to);

    // The names of X keysyms with + between them, modifiers first: "Control_L+w".
    void pressKeys(std::string_view combination);
    // ASCII.
    void type(std::string_view text);

private:
    class Devices;
    class VirtualDevices;
    class KWinDevices;
    struct Key {
        std::uint32_t code = 0;  // of the kernel's input events
        bool isShifted = false;
    };
    Key keyOf(xkb_keysym_t symbol) const;
    void stroke(const Key& key, bool isControlHeld, bool isShiftHeld);

    WaylandConnection connection_;
    std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context_;
    std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap_;
    std::unique_ptr<Devices> devices_;
};

}  // namespace ovrin
