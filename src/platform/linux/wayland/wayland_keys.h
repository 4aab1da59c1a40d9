// The keys that a Wayland compositor lets a program press, in whatever window has the keyboard.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_keymap.h"

namespace ovrin {

// Used by the thread that uses the connection, which outlives it.
class WaylandKeys {
public:
    // The name of what keys are pressed with there; empty where they cannot be.
    static std::string mechanism(const WaylandConnection& connection);

    // Makes what presses them. seat: outlives the object. Null where the compositor lets this program press none.
    static std::unique_ptr<WaylandKeys> of(WaylandConnection& connection, wl_seat* seat);

    virtual ~WaylandKeys() = default;
    WaylandKeys(const WaylandKeys&) = delete;
    WaylandKeys& operator=(const WaylandKeys&) = delete;

    // To be called before the first stroke, as early as possible, and whenever the seat's keymap has changed.
    virtual void useKeymap(const WaylandKeymap& keymap) = 0;

    // Press both keys and release them, as if no other key were held; the modifier may stay pressed until letGo(). They
    // are sent with the connection's next round trip.
    virtual void press(const WaylandKeyStroke& stroke) = 0;
    virtual void letGo() {}

protected:
    WaylandKeys() = default;
};

}  // namespace ovrin
