// The windows of all programs of a Wayland desktop, and which of them has the keyboard.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

struct WaylandToplevel {
    std::uint64_t number = 0;  // never used for another window; from 1 on
    std::string applicationId{};
    bool isActivated = false;
};

// What the events tell that the connection has taken in. Used by the thread that uses the connection, which outlives
// it.
class WaylandToplevels {
public:
    // Null where the compositor tells this program nothing of them.
    static std::unique_ptr<WaylandToplevels> of(WaylandConnection& connection);

    virtual ~WaylandToplevels() = default;
    WaylandToplevels(const WaylandToplevels&) = delete;
    WaylandToplevels& operator=(const WaylandToplevels&) = delete;

    // The window with the keyboard; null while none has it.
    const WaylandToplevel* front() const;

    // How often a window has got the keyboard so far.
    std::uint64_t activationCount() const { return activationCount_; }

    // Whether a window has appeared since the last call of which the compositor has only been asked yet: one more round
    // trip brings what it is.
    bool takeUnknown() { return std::exchange(hasUnknown_, false); }

protected:
    WaylandToplevels() = default;

    // What the protocol's events say of the window behind the handle.
    void add(const void* handle);
    void setApplicationId(const void* handle, const char* applicationId);
    void setActivated(const void* handle, bool isActivated);
    void remove(const void* handle);
    void noteUnknown() { hasUnknown_ = true; }

private:
    struct Entry {
        const void* handle = nullptr;
        WaylandToplevel toplevel;
    };
    WaylandToplevel& toplevelOf(const void* handle);

    std::vector<Entry> entries_;
    std::uint64_t lastNumber_ = 0;
    std::uint64_t activationCount_ = 0;
    bool hasUnknown_ = false;
};

}  // namespace ovrin
