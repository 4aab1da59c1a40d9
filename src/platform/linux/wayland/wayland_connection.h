// A connection of our own to the Wayland compositor, independent of the window toolkit's.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <wayland-client.h>

#include "base/geometry.h"

namespace ovrin {

// Destroys a protocol object with the function that its protocol names for that.
template <auto destroy>
struct DestroysWayland {
    template <typename Object>
    void operator()(Object* object) const {
        destroy(object);
    }
};
template <typename Object, auto destroy>
using WaylandObject = std::unique_ptr<Object, DestroysWayland<destroy>>;

// Whole points of the compositor's layout of its outputs, y downwards.
struct LayoutPoints {
    using Number = int;
};

// One display of the compositor.
struct WaylandOutput {
    wl_output* output = nullptr;
    std::uint32_t number = 0;  // the compositor's own, the same for every connection
    std::string name;          // such as "HDMI-A-1"; empty where the compositor doesn't tell
    Rect<LayoutPoints> frame;
    int transform = WL_OUTPUT_TRANSFORM_NORMAL;  // how the picture in memory is turned before it is shown
    int scale = 1;                               // as programs should draw; a whole number, at least the real scale
    int modeWidth = 0;                           // pixels of the picture in memory
    int modeHeight = 0;
};

// Used by one thread at a time; the objects bound through it belong to it.
class WaylandConnection {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds patience{2000};  // with a compositor that doesn't answer
    static constexpr const char* lostDescription = "与桌面（Wayland）的连接已断开。";

    // name: of the compositor's socket; null for the one the environment names. Throws Error when no compositor
    // answers.
    explicit WaylandConnection(const char* name = nullptr);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    wl_display* display() const { return display_.get(); }
    wl_shm* sharedMemory() const { return sharedMemory_; }
    // Of several the first with a keyboard, which is the user's whom the program works for; null without any.
    wl_seat* seat() const { return seat_; }
    // Binds that seat once more, for whoever wants its events from the beginning. Throws Error where there is none.
    wl_seat* bindSeat();
    // The displays as they were when the connection was made, or refreshOutputs() called.
    const std::vector<WaylandOutput>& outputs() const { return outputs_; }
    // Asks for them anew. Throws Error when the compositor has gone.
    void refreshOutputs();

    // The version of the interface that the compositor offers; 0 where it offers none.
    std::uint32_t versionOf(const wl_interface& interface) const;

    // Binds the interface's first global in at most this version; null where the compositor offers none.
    template <typename Object>
    Object* bind(const wl_interface& interface, std::uint32_t version) {
        return static_cast<Object*>(bindGlobal(interface, version));
    }

    // Sends what is waiting and takes events in until `isDone` holds; false when the time is over before. Throws
    // Error when the compositor has gone.
    bool waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds time = patience) const;

    // Sends what is waiting and takes in what the compositor has said; where it has said nothing, waits for that, or
    // for one of the other descriptors, until the deadline, if any. Throws Error when the compositor has gone.
    void wait(std::span<pollfd> others, std::optional<Clock::time_point> deadline) const;

    // For a loop that waits for more than this connection: readable when process() has something to do.
    int descriptor() const { return wl_display_get_fd(display()); }
    // Takes in what has arrived, without waiting; false when the compositor has gone and will tell nothing any more. A
    // program that never does is disconnected in the end.
    bool process() const;
    bool isLost() const { return wl_display_get_error(display()) != 0; }

    // Waits until the compositor has dealt with everything that was asked of it. Throws Error when it doesn't within
    // that time.
    void roundTrip(std::chrono::milliseconds time = patience) const;

private:
    using Display = WaylandObject<wl_display, wl_display_disconnect>;
    struct Global {
        std::string interface;
        std::uint32_t version = 0;
    };
    // Knows nothing of the compositor yet. What asks it later may throw, and is destroyed properly then.
    explicit WaylandConnection(Display display) : display_(std::move(display)) {}

    void* bindGlobal(const wl_interface& interface, std::uint32_t version);
    void* bindNamed(std::uint32_t name, const wl_interface& interface, std::uint32_t version);
    void findSeat();
    void findOutputs();
    void releaseOutputs();

    Display display_;
    wl_registry* registry_ = nullptr;
    std::map<std::uint32_t, Global> globals_;  // by the number that the compositor gave them
    wl_shm* sharedMemory_ = nullptr;
    static constexpr std::uint32_t seatVersion = 5;
    wl_seat* seat_ = nullptr;
    std::uint32_t seatNumber_ = 0;
    std::vector<WaylandOutput> outputs_;
};

}  // namespace ovrin
