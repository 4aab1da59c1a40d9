// A connection to an X server and what comes over it, with owners.
#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace ovrin {

using X11Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

// display: such as ":0"; null for the one the environment names. Throws Error when no server answers there.
X11Connection connectToX11(const char* display);

struct FreeX11Memory {
    void operator()(void* memory) const { std::free(memory); }  // NOLINT(cppcoreguidelines-no-malloc)
};
using X11Event = std::unique_ptr<xcb_generic_event_t, FreeX11Memory>;

template <typename Reply>
using X11Reply = std::unique_ptr<Reply, FreeX11Memory>;

// Makes the name known to the server when it isn't; XCB_ATOM_NONE when the connection is lost. One round trip.
xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name);

}  // namespace ovrin
