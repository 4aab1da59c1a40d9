#include "platform/linux/wayland/wayland_connection.h"

#include <algorithm>

#include "base/error.h"
#include "xdg-output-unstable-v1-client.h"

namespace ovrin {
namespace {

[[noreturn]] void throwLost() {
    throw Error(WaylandConnection::lostDescription);
}

WaylandOutput& outputOf(void* data) {
    return *static_cast<WaylandOutput*>(data);
}

constexpr wl_output_listener outputListener = {
    [](void* data, wl_output* /*output*/, std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*width*/,
       std::int32_t /*height*/, std::int32_t /*subpixel*/, const char* /*make*/, const char* /*model*/,
       std::int32_t transform) { outputOf(data).transform = transform; },
    [](void* data, wl_output* /*output*/, std::uint32_t flags, std::int32_t width, std::int32_t height,
       std::int32_t /*refresh*/) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) == 0) return;
        outputOf(data).modeWidth = width;
        outputOf(data).modeHeight = height;
    },
    [](void* /*data*/, wl_output* /*output*/) {},
    [](void* data, wl_output* /*output*/, std::int32_t factor) { outputOf(data).scale = factor; },
    [](void* data, wl_output* /*output*/, const char* name) { outputOf(data).name = name; },
    [](void* /*data*/, wl_output* /*output*/, const char* /*description*/) {}};

// Where nobody tells the layout: one output at the origin.
Rect<LayoutPoints> frameOf(const WaylandOutput& output) {
    const bool isTurned = output.transform % 2 == 1;
    const int width = isTurned ? output.modeHeight : output.modeWidth;
    const int height = isTurned ? output.modeWidth : output.modeHeight;
    return {.x = 0, .y = 0, .width = width / output.scale, .height = height / output.scale};
}

Rect<LayoutPoints>& layoutFrame(void* data) {
    return *static_cast<Rect<LayoutPoints>*>(data);
}

constexpr zxdg_output_v1_listener layoutListener = {
    [](void* frame, zxdg_output_v1* /*output*/, std::int32_t x, std::int32_t y) {
        layoutFrame(frame).x = x;
        layoutFrame(frame).y = y;
    },
    [](void* frame, zxdg_output_v1* /*output*/, std::int32_t width, std::int32_t height) {
        layoutFrame(frame).width = width;
        layoutFrame(frame).height = height;
    },
    [](void* /*frame*/, zxdg_output_v1* /*output*/) {},
    [](void* /*frame*/, zxdg_output_v1* /*output*/, const char* /*name*/) {},
    [](void* /*frame*/, zxdg_output_v1* /*output*/, const char* /*description*/) {}};

}  // namespace

WaylandConnection::WaylandConnection(const char* name) : WaylandConnection(Display(wl_display_connect(name))) {
    if (!display_) throw Error("无法连接到桌面（Wayland）。");
    registry_ = wl_display_get_registry(display());
    static constexpr wl_registry_listener listener = {
        [](void* self, wl_registry* /*registry*/, std::uint32_t name, const char* interface, std::uint32_t version) {
            static_cast<WaylandConnection*>(self)->globals_[name] = {interface, version};
        },
        [](void* self, wl_registry* /*registry*/, std::uint32_t name) {
            static_cast<WaylandConnection*>(self)->globals_.erase(name);
        }};
    wl_registry_add_listener(registry_, &listener, this);
    roundTrip();
    sharedMemory_ = bind<wl_shm>(wl_shm_interface, 1);
    findSeat();
    findOutputs();
}

// The display frees what was bound through it but for the memory of the client's halves.
WaylandConnection::~WaylandConnection() {
    releaseOutputs();
    if (seat_ != nullptr) wl_seat_destroy(seat_);
    if (sharedMemory_ != nullptr) wl_shm_destroy(sharedMemory_);
    if (registry_ != nullptr) wl_registry_destroy(registry_);
}

std::uint32_t WaylandConnection::versionOf(const wl_interface& interface) const {
    const auto found =
        std::ranges::find_if(globals_, [&](const auto& entry) { return entry.second.interface == interface.name; });
    return found == globals_.end() ? 0 : found->second.version;
}

void* WaylandConnection::bindNamed(std::uint32_t name, const wl_interface& interface, std::uint32_t version) {
    return wl_registry_bind(registry_, name, &interface, std::min(version, globals_.at(name).version));
}

void* WaylandConnection::bindGlobal(const wl_interface& interface, std::uint32_t version) {
    const auto found =
        std::ranges::find_if(globals_, [&](const auto& entry) { return entry.second.interface == interface.name; });
    return found == globals_.end() ? nullptr : bindNamed(found->first, interface, version);
}

void WaylandConnection::findSeat() {
    struct Seat {
        WaylandObject<wl_seat, wl_seat_destroy> object;
        std::uint32_t number = 0;
        bool hasKeyboard = false;
    };
    std::vector<Seat> seats;
    for (const auto& [number, global] : globals_) {
        if (global.interface != wl_seat_interface.name) continue;
        auto* const seat = static_cast<wl_seat*>(bindNamed(number, wl_seat_interface, seatVersion));
        seats.push_back({.object = WaylandObject<wl_seat, wl_seat_destroy>(seat), .number = number});
    }
    if (seats.empty()) return;
    static constexpr wl_seat_listener listener = {[](void* found, wl_seat* /*seat*/, std::uint32_t capabilities) {
                                                      static_cast<Seat*>(found)->hasKeyboard =
                                                          (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
                                                  },
                                                  [](void* /*found*/, wl_seat* /*seat*/, const char* /*name*/) {}};
    for (Seat& seat : seats) wl_seat_add_listener(seat.object.get(), &listener, &seat);
    roundTrip();
    const auto withKeyboard = std::ranges::find_if(seats, &Seat::hasKeyboard);
    seatNumber_ = (withKeyboard == seats.end() ? seats.front() : *withKeyboard).number;
    seat_ = bindSeat();
}

wl_seat* WaylandConnection::bindSeat() {
    if (!globals_.contains(seatNumber_)) throw Error("此桌面（Wayland）没有键盘。");
    return static_cast<wl_seat*>(bindNamed(seatNumber_, wl_seat_interface, seatVersion));
}

// The compositor's half goes, too, where the version has a request for that.
void WaylandConnection::releaseOutputs() {
    for (const WaylandOutput& output : outputs_) {
        const bool isTold = wl_output_get_version(output.output) >= WL_OUTPUT_RELEASE_SINCE_VERSION;
        isTold ? wl_output_release(output.output) : wl_output_destroy(output.output);
    }
    outputs_.clear();
}

void WaylandConnection::refreshOutputs() {
    roundTrip();
    releaseOutputs();
    findOutputs();
}

void WaylandConnection::findOutputs() {
    for (const auto& [name, global] : globals_) {
        if (global.interface != wl_output_interface.name) continue;
        WaylandOutput& output = outputs_.emplace_back();
        output.number = name;
        output.output = static_cast<wl_output*>(bindNamed(name, wl_output_interface, 4));
    }
    for (WaylandOutput& output : outputs_) wl_output_add_listener(output.output, &outputListener, &output);
    roundTrip();
    for (WaylandOutput& output : outputs_) output.frame = frameOf(output);

    using Manager = WaylandObject<zxdg_output_manager_v1, zxdg_output_manager_v1_destroy>;
    const Manager manager(bind<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface, 2));
    if (!manager) return;
    std::vector<WaylandObject<zxdg_output_v1, zxdg_output_v1_destroy>> layouts;
    for (WaylandOutput& output : outputs_) {
        layouts.emplace_back(zxdg_output_manager_v1_get_xdg_output(manager.get(), output.output));
        zxdg_output_v1_add_listener(layouts.back().get(), &layoutListener, &output.frame);
    }
    roundTrip();
}

bool WaylandConnection::waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds time) const {
    const auto deadline = Clock::now() + time;
    while (!isDone()) {
        if (Clock::now() >= deadline) return false;
        wait({}, deadline);
    }
    return true;
}

void WaylandConnection::wait(std::span<pollfd> others, std::optional<Clock::time_point> deadline) const {
    for (pollfd& other : others) other.revents = 0;
    if (wl_display_prepare_read(display()) == 0) {
        const bool sent = wl_display_flush(display()) >= 0;
        std::vector<pollfd> all{{wl_display_get_fd(display()), static_cast<short>(POLLIN | (sent ? 0 : POLLOUT)), 0}};
        all.insert(all.end(), others.begin(), others.end());
        int timeout = -1;
        if (deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
            timeout = static_cast<int>(std::max<std::int64_t>(left, 0));
        }
        const bool isReady = poll(all.data(), all.size(), timeout) > 0;
        if (isReady) std::copy(all.begin() + 1, all.end(), others.begin());
        if (!isReady || all.front().revents == 0) {
            wl_display_cancel_read(display());
        } else if (wl_display_read_events(display()) < 0) {
            throwLost();
        }
    }
    if (wl_display_dispatch_pending(display()) < 0) throwLost();
}

bool WaylandConnection::process() const {
    try {
        wait({}, Clock::now());
    } catch (const Error&) {
        return false;
    }
    return true;
}

void WaylandConnection::roundTrip(std::chrono::milliseconds time) const {
    bool isAnswered = false;
    const WaylandObject<wl_callback, wl_callback_destroy> callback(wl_display_sync(display()));
    static constexpr wl_callback_listener listener = {
        [](void* answered, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
            *static_cast<bool*>(answered) = true;
        }};
    wl_callback_add_listener(callback.get(), &listener, &isAnswered);
    if (!waitUntil([&] { return isAnswered; }, time)) throw Error("桌面（Wayland）没有应答。");
}

}  // namespace ovrin
