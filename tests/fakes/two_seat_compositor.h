// A compositor without screens on a thread of this process: two seats, of which the second alone has a keyboard, each
// with a clipboard and a PRIMARY that programs reach by ext-data-control, as those compositors offer it that have no
// older protocol for it. It lets nobody press keys or see windows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <wayland-server-core.h>

#include "fakes/temporary_directory.h"

namespace ovrin {

class TwoSeatCompositor {
public:
    TwoSeatCompositor();
    TwoSeatCompositor(const TwoSeatCompositor&) = delete;
    TwoSeatCompositor& operator=(const TwoSeatCompositor&) = delete;
    ~TwoSeatCompositor();

    // The path of its socket.
    std::string display() const { return (folder_.path() / "two-seats").string(); }

    // Both seats go away.
    void removeSeats() const { ask('r'); }

private:
    // What a program offers; lives as long as somebody may ask for it.
    struct Source {
        wl_resource* resource = nullptr;  // null when the program has withdrawn it
        std::vector<std::string> types;
    };
    enum Place : std::size_t { clipboard, primary };
    struct Seat {
        wl_global* global = nullptr;
        bool hasKeyboard = false;
        std::array<std::shared_ptr<Source>, 2> owners;
        std::vector<wl_resource*> devices;
    };

    static void bindSeat(wl_client* client, void* seat, std::uint32_t version, std::uint32_t id);
    static void bindManager(wl_client* client, void* self, std::uint32_t version, std::uint32_t id);
    static void createSource(wl_client* client, wl_resource* manager, std::uint32_t id);
    static void createDevice(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource* seat);
    static void setOwner(wl_resource* device, Place place, wl_resource* source);
    static void tell(wl_resource* device, Place place);
    int obey(int pipe);
    void ask(char command) const;

    TemporaryDirectory folder_;
    wl_display* display_;
    std::array<Seat, 2> seats_;
    std::array<int, 2> commands_{};  // a pipe
    wl_event_source* commandSource_ = nullptr;
    std::thread thread_;
};

}  // namespace ovrin
