// A pointer of a Wayland compositor that the test moves.
#pragma once

#include <cstdint>

#include "base/error.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "wlr-virtual-pointer-unstable-v1-client.h"

namespace ovrin {

class WaylandVirtualPointer {
public:
    // display: the compositor's socket. Throws Error when the compositor takes none.
    explicit WaylandVirtualPointer(const char* display) : connection_(display) {
        using Manager = WaylandObject<zwlr_virtual_pointer_manager_v1, zwlr_virtual_pointer_manager_v1_destroy>;
        const Manager manager(
            connection_.bind<zwlr_virtual_pointer_manager_v1>(zwlr_virtual_pointer_manager_v1_interface, 1));
        if (!manager) throw Error("the compositor takes no virtual pointer");
        pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager.get(), nullptr);
        connection_.roundTrip();
    }
    WaylandVirtualPointer(const WaylandVirtualPointer&) = delete;
    WaylandVirtualPointer& operator=(const WaylandVirtualPointer&) = delete;
    ~WaylandVirtualPointer() { zwlr_virtual_pointer_v1_destroy(pointer_); }

    // To the place in a layout of outputs that has this frame. Returns when the compositor has done it.
    void moveTo(Point<LayoutPoints> place, const Rect<LayoutPoints>& layout) {
        const auto distance = [](int from, int to) { return static_cast<std::uint32_t>(to - from); };
        zwlr_virtual_pointer_v1_motion_absolute(pointer_, 0, distance(layout.x, place.x), distance(layout.y, place.y),
                                                static_cast<std::uint32_t>(layout.width),
                                                static_cast<std::uint32_t>(layout.height));
        zwlr_virtual_pointer_v1_frame(pointer_);
        connection_.roundTrip();
    }

private:
    WaylandConnection connection_;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
};

}  // namespace ovrin
