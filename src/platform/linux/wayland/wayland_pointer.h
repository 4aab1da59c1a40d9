// Where the pointer is. Compositors tell that only to the program under it: a transparent surface comes up on every
// output until the pointer enters one of them, which takes some milliseconds and shows nothing.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/geometry.h"
#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

struct WaylandPointerPlace {
    std::string outputName;  // empty where the compositor doesn't tell
    Rect<LayoutPoints> outputFrame;
    LocalPoint point;  // of the output
};

class WaylandPointer {
public:
    static constexpr std::chrono::milliseconds patience{50};  // with a compositor that does not tell

    // Whether surfaces can be put on outputs.
    static bool isOfferedBy(const WaylandConnection& connection);

    // Looks for the pointer. Waits, on the thread that uses the connection. None when there is no pointer, or the
    // compositor does not tell. Throws Error when the compositor does not answer.
    static std::optional<WaylandPointerPlace> find(WaylandConnection& connection);
};

}  // namespace ovrin
