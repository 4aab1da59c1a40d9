#include "fakes/two_seat_compositor.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server-protocol.h>

#include "base/error.h"
#include "ext-data-control-v1-server.h"

namespace ovrin {
namespace {

template <typename Object>
Object& dataOf(wl_resource* resource) {
    return *static_cast<Object*>(wl_resource_get_user_data(resource));
}

void destroyResource(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

}  // namespace

TwoSeatCompositor::TwoSeatCompositor() : display_(wl_display_create()) {
    seats_[1].hasKeyboard = true;
    if (::pipe2(commands_.data(), O_CLOEXEC) != 0) throw Error("no pipe");
    for (Seat& seat : seats_) seat.global = wl_global_create(display_, &wl_seat_interface, 5, &seat, bindSeat);
    wl_global_create(display_, &ext_data_control_manager_v1_interface, 1, this, bindManager);
    commandSource_ = wl_event_loop_add_fd(
        wl_display_get_event_loop(display_), commands_[0], WL_EVENT_READABLE,
        [](int pipe, std::uint32_t /*mask*/, void* self) { return static_cast<TwoSeatCompositor*>(self)->obey(pipe); },
        this);
    const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    display().copy(address.sun_path, sizeof address.sun_path - 1);
    const bool isBound = ::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!isBound || ::listen(listening, 8) != 0 || wl_display_add_socket_fd(display_, listening) != 0) {
        throw Error("cannot listen for programs");
    }
    thread_ = std::thread([this] { wl_display_run(display_); });
}

TwoSeatCompositor::~TwoSeatCompositor() {
    ask('q');
    thread_.join();
    wl_event_source_remove(commandSource_);
    wl_display_destroy_clients(display_);
    wl_display_destroy(display_);
    for (const int end : commands_) ::close(end);
}

void TwoSeatCompositor::ask(char command) const {
    if (::write(commands_[1], &command, 1) != 1) throw Error("the compositor does not listen");
}

int TwoSeatCompositor::obey(int pipe) {
    char command = 0;
    if (::read(pipe, &command, 1) == 1 && command == 'r') {
        for (const Seat& seat : seats_) {
            std::ranges::for_each(seat.devices, ext_data_control_device_v1_send_finished);
            wl_global_destroy(seat.global);
        }
    } else {
        wl_display_terminate(display_);
    }
    return 0;
}

void TwoSeatCompositor::bindSeat(wl_client* client, void* seat, std::uint32_t version, std::uint32_t id) {
    wl_resource* const resource = wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
    static constexpr auto makeNothing = [](wl_client* of, wl_resource* /*seat*/, std::uint32_t number) {
        wl_resource_create(of, &wl_keyboard_interface, 1, number);
    };
    static const struct wl_seat_interface requests = {makeNothing, makeNothing, makeNothing, destroyResource};
    wl_resource_set_implementation(resource, &requests, seat, nullptr);
    wl_seat_send_capabilities(resource, static_cast<Seat*>(seat)->hasKeyboard ? WL_SEAT_CAPABILITY_KEYBOARD : 0);
}

void TwoSeatCompositor::bindManager(wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
    wl_resource* const resource =
        wl_resource_create(client, &ext_data_control_manager_v1_interface, static_cast<int>(version), id);
    static const struct ext_data_control_manager_v1_interface requests = {createSource, createDevice, destroyResource};
    wl_resource_set_implementation(resource, &requests, self, nullptr);
}

void TwoSeatCompositor::createSource(wl_client* client, wl_resource* /*manager*/, std::uint32_t id) {
    wl_resource* const resource = wl_resource_create(client, &ext_data_control_source_v1_interface, 1, id);
    static const struct ext_data_control_source_v1_interface requests = {
        [](wl_client* /*client*/, wl_resource* source, const char* type) {
            dataOf<std::shared_ptr<Source>>(source)->types.emplace_back(type);
        },
        destroyResource};
    auto* const source = new std::shared_ptr<Source>(std::make_shared<Source>());
    (*source)->resource = resource;
    wl_resource_set_implementation(resource, &requests, source, [](wl_resource* destroyed) {
        auto* const withdrawn = &dataOf<std::shared_ptr<Source>>(destroyed);
        (*withdrawn)->resource = nullptr;
        delete withdrawn;
    });
}

void TwoSeatCompositor::createDevice(wl_client* client, wl_resource* /*manager*/, std::uint32_t id,
                                     wl_resource* seatResource) {
    auto& seat = dataOf<Seat>(seatResource);
    wl_resource* const resource = wl_resource_create(client, &ext_data_control_device_v1_interface, 1, id);
    static const struct ext_data_control_device_v1_interface requests = {
        [](wl_client* /*client*/, wl_resource* device, wl_resource* source) { setOwner(device, clipboard, source); },
        destroyResource,
        [](wl_client* /*client*/, wl_resource* device, wl_resource* source) { setOwner(device, primary, source); }};
    wl_resource_set_implementation(resource, &requests, &seat, [](wl_resource* destroyed) {
        std::erase(dataOf<Seat>(destroyed).devices, destroyed);
    });
    seat.devices.push_back(resource);
    tell(resource, clipboard);
    tell(resource, primary);
}

void TwoSeatCompositor::setOwner(wl_resource* device, Place place, wl_resource* source) {
    auto& seat = dataOf<Seat>(device);
    const std::shared_ptr<Source> before = seat.owners.at(place);
    seat.owners.at(place) = source != nullptr ? dataOf<std::shared_ptr<Source>>(source) : nullptr;
    if (before && before->resource != nullptr) ext_data_control_source_v1_send_cancelled(before->resource);
    for (wl_resource* const other : seat.devices) tell(other, place);
}

void TwoSeatCompositor::tell(wl_resource* device, Place place) {
    const std::shared_ptr<Source>& owner = dataOf<Seat>(device).owners.at(place);
    wl_resource* offer = nullptr;
    if (owner && owner->resource != nullptr) {
        offer = wl_resource_create(wl_resource_get_client(device), &ext_data_control_offer_v1_interface, 1, 0);
        static const struct ext_data_control_offer_v1_interface requests = {
            [](wl_client* /*client*/, wl_resource* asked, const char* type, int pipe) {
                const auto& source = dataOf<std::shared_ptr<Source>>(asked);
                if (source->resource != nullptr) ext_data_control_source_v1_send_send(source->resource, type, pipe);
                ::close(pipe);
            },
            destroyResource};
        wl_resource_set_implementation(offer, &requests, new std::shared_ptr<Source>(owner),
                                       [](wl_resource* gone) { delete &dataOf<std::shared_ptr<Source>>(gone); });
        ext_data_control_device_v1_send_data_offer(device, offer);
        for (const std::string& type : owner->types) ext_data_control_offer_v1_send_offer(offer, type.c_str());
    }
    if (place == clipboard) {
        ext_data_control_device_v1_send_selection(device, offer);
    } else {
        ext_data_control_device_v1_send_primary_selection(device, offer);
    }
}

}  // namespace ovrin
