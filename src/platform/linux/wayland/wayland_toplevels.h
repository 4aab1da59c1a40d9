// The windows of all programs of a Wayland desktop, and which of them has the keyboard.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/wayland/wayland_connection.h"
#include "wlr-foreign-toplevel-management-unstable-v1-client.h"

namespace ovrin {

struct WaylandToplevel {
    std::uint64_t number = 0;  // never used for another window; from 1 on
    std::string applicationId{};
    bool isActivated = false;
};

// As the events say that the connection has taken in. Used by the thread that uses the connection, which outlives it.
class WaylandToplevels {
public:
    explicit WaylandToplevels(WaylandConnection& connection);
    WaylandToplevels(const WaylandToplevels&) = delete;
    WaylandToplevels& operator=(const WaylandToplevels&) = delete;
    ~WaylandToplevels();

    // Whether the compositor tells of them at all.
    bool areKnown() const { return manager_ != nullptr; }

    // The one with the keyboard; null while none has it.
    const WaylandToplevel* front() const;

private:
    struct Entry {
        WaylandToplevel toplevel;
        zwlr_foreign_toplevel_handle_v1* handle = nullptr;
    };
    void add(zwlr_foreign_toplevel_handle_v1* handle);
    void remove(zwlr_foreign_toplevel_handle_v1* handle);
    WaylandToplevel& of(zwlr_foreign_toplevel_handle_v1* handle);

    zwlr_foreign_toplevel_manager_v1* manager_;
    std::vector<Entry> entries_;
    std::uint64_t lastNumber_ = 0;
};

}  // namespace ovrin
