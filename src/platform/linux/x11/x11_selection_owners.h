// Whether selections of the X server have an owner, and when that changes. Services announce themselves that way: a
// compositor owns "_NET_WM_CM_S0" (the number is that of the X screen), a status area the one named below. Of a server
// without XFixes only what is there at first is known.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/x11/x11_connection.h"

namespace ovrin {

// One thread, which sleeps until the descriptor is readable.
class X11SelectionOwners {
public:
    static constexpr const char* statusArea = "_NET_SYSTEM_TRAY_S0";  // that takes icons in as windows (XEmbed)

    // display: such as ":0"; null for the one the environment names. Throws Error when no server answers there.
    X11SelectionOwners(const char* display, const std::vector<std::string>& selections);

    bool hasOwner(std::string_view selection) const;

    // Readable when process() has something to do.
    int descriptor() const { return xcb_get_file_descriptor(connection_.get()); }

    // Takes in what the server told; false when the server has gone and will tell nothing any more.
    bool process();

private:
    struct Selection {
        std::string name;
        bool hasOwner = false;
    };

    X11Connection connection_;
    std::uint8_t ownerChangeEvent_ = 0;  // none where it is 0, as errors have it
    std::map<xcb_atom_t, Selection> selections_;
};

}  // namespace ovrin
