#include "platform/linux/wayland/wayland_toplevels.h"

#include <algorithm>
#include <span>

namespace ovrin {
namespace {

bool isActivatedIn(const wl_array& states) {
    const std::span all(static_cast<const std::uint32_t*>(states.data), states.size / sizeof(std::uint32_t));
    return std::ranges::find(all, std::uint32_t{ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED}) != all.end();
}

}  // namespace

WaylandToplevels::WaylandToplevels(WaylandConnection& connection)
    : manager_(connection.bind<zwlr_foreign_toplevel_manager_v1>(zwlr_foreign_toplevel_manager_v1_interface, 1)) {
    if (!areKnown()) return;
    static constexpr zwlr_foreign_toplevel_manager_v1_listener listener = {
        [](void* self, zwlr_foreign_toplevel_manager_v1* /*manager*/, zwlr_foreign_toplevel_handle_v1* handle) {
            static_cast<WaylandToplevels*>(self)->add(handle);
        },
        [](void* /*self*/, zwlr_foreign_toplevel_manager_v1* /*manager*/) {}};
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &listener, this);
    connection.roundTrip();
}

WaylandToplevels::~WaylandToplevels() {
    for (const Entry& entry : entries_) zwlr_foreign_toplevel_handle_v1_destroy(entry.handle);
    if (areKnown()) zwlr_foreign_toplevel_manager_v1_destroy(manager_);
}

void WaylandToplevels::add(zwlr_foreign_toplevel_handle_v1* handle) {
    entries_.push_back({.toplevel = {.number = ++lastNumber_}, .handle = handle});
    static constexpr zwlr_foreign_toplevel_handle_v1_listener listener = {
        [](void* /*self*/, zwlr_foreign_toplevel_handle_v1* /*handle*/, const char* /*title*/) {},
        [](void* self, zwlr_foreign_toplevel_handle_v1* handle, const char* applicationId) {
            static_cast<WaylandToplevels*>(self)->of(handle).applicationId = applicationId;
        },
        [](void* /*self*/, zwlr_foreign_toplevel_handle_v1* /*handle*/, wl_output* /*output*/) {},
        [](void* /*self*/, zwlr_foreign_toplevel_handle_v1* /*handle*/, wl_output* /*output*/) {},
        [](void* self, zwlr_foreign_toplevel_handle_v1* handle, wl_array* states) {
            static_cast<WaylandToplevels*>(self)->of(handle).isActivated = isActivatedIn(*states);
        },
        [](void* /*self*/, zwlr_foreign_toplevel_handle_v1* /*handle*/) {},
        [](void* self, zwlr_foreign_toplevel_handle_v1* handle) {
            static_cast<WaylandToplevels*>(self)->remove(handle);
        },
        [](void* /*self*/, zwlr_foreign_toplevel_handle_v1* /*handle*/, zwlr_foreign_toplevel_handle_v1* /*parent*/) {
        }};
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, this);
}

void WaylandToplevels::remove(zwlr_foreign_toplevel_handle_v1* handle) {
    std::erase_if(entries_, [handle](const Entry& entry) { return entry.handle == handle; });
    zwlr_foreign_toplevel_handle_v1_destroy(handle);
}

// Nothing is said of a window after it has closed.
WaylandToplevel& WaylandToplevels::of(zwlr_foreign_toplevel_handle_v1* handle) {
    return std::ranges::find(entries_, handle, &Entry::handle)->toplevel;
}

const WaylandToplevel* WaylandToplevels::front() const {
    const auto front = std::ranges::find_if(entries_, [](const Entry& entry) { return entry.toplevel.isActivated; });
    return front == entries_.end() ? nullptr : &front->toplevel;
}

}  // namespace ovrin
