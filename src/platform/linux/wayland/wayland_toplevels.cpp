#include "platform/linux/wayland/wayland_toplevels.h"

#include <algorithm>
#include <span>
#include <type_traits>

#include "plasma-window-management-client.h"
#include "wlr-foreign-toplevel-management-unstable-v1-client.h"

namespace ovrin {
namespace {

constexpr auto ignored = [](auto...) {};

class WlrToplevels final : public WaylandToplevels {
public:
    static constexpr const wl_interface* managerInterface = &zwlr_foreign_toplevel_manager_v1_interface;

    explicit WlrToplevels(WaylandConnection& connection)
        : manager_(connection.bind<zwlr_foreign_toplevel_manager_v1>(*managerInterface, 1)) {
        static constexpr zwlr_foreign_toplevel_manager_v1_listener listener = {
            [](void* self, zwlr_foreign_toplevel_manager_v1* /*manager*/, zwlr_foreign_toplevel_handle_v1* handle) {
                static_cast<WlrToplevels*>(self)->introduce(handle);
            },
            ignored};
        zwlr_foreign_toplevel_manager_v1_add_listener(manager_.get(), &listener, this);
        connection.roundTrip();
    }

private:
    using Manager = WaylandObject<zwlr_foreign_toplevel_manager_v1, zwlr_foreign_toplevel_manager_v1_destroy>;
    using Handle = WaylandObject<zwlr_foreign_toplevel_handle_v1, zwlr_foreign_toplevel_handle_v1_destroy>;

    static bool isActivatedIn(const wl_array& states) {
        const std::span all(static_cast<const std::uint32_t*>(states.data), states.size / sizeof(std::uint32_t));
        return std::ranges::find(all, std::uint32_t{ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED}) != all.end();
    }

    void introduce(zwlr_foreign_toplevel_handle_v1* handle) {
        handles_.emplace_back(handle);
        add(handle);
        static constexpr zwlr_foreign_toplevel_handle_v1_listener listener = {
            ignored,
            [](void* self, zwlr_foreign_toplevel_handle_v1* handle, const char* applicationId) {
                static_cast<WlrToplevels*>(self)->setApplicationId(handle, applicationId);
            },
            ignored,
            ignored,
            [](void* self, zwlr_foreign_toplevel_handle_v1* handle, wl_array* states) {
                static_cast<WlrToplevels*>(self)->setActivated(handle, isActivatedIn(*states));
            },
            ignored,
            [](void* self, zwlr_foreign_toplevel_handle_v1* handle) {
                static_cast<WlrToplevels*>(self)->forget(handle);
            },
            ignored};
        zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, this);
    }
    void forget(zwlr_foreign_toplevel_handle_v1* handle) {
        remove(handle);
        std::erase_if(handles_, [handle](const Handle& known) { return known.get() == handle; });
    }

    Manager manager_;
    std::vector<Handle> handles_;
};

// KWin tells of windows in a protocol of its own, and programs only whose desktop entry asks for it.
class PlasmaToplevels final : public WaylandToplevels {
public:
    static constexpr const wl_interface* managerInterface = &org_kde_plasma_window_management_interface;
    static constexpr std::uint32_t version = 13;  // from which on windows are known by a name that is never used again

    explicit PlasmaToplevels(WaylandConnection& connection)
        : manager_(connection.bind<org_kde_plasma_window_management>(*managerInterface, version)) {
        static constexpr org_kde_plasma_window_management_listener listener = {
            ignored, ignored, ignored, ignored,
            [](void* self, org_kde_plasma_window_management* /*manager*/, std::uint32_t /*number*/, const char* name) {
                static_cast<PlasmaToplevels*>(self)->introduce(name);
            }};
        org_kde_plasma_window_management_add_listener(manager_.get(), &listener, this);
        connection.roundTrip();  // which windows there are
        connection.roundTrip();  // what they are
    }

private:
    using Manager = WaylandObject<org_kde_plasma_window_management, org_kde_plasma_window_management_destroy>;
    using Window = WaylandObject<org_kde_plasma_window, org_kde_plasma_window_destroy>;

    void introduce(const char* name) {
        auto* const window = org_kde_plasma_window_management_get_window_by_uuid(manager_.get(), name);
        windows_.emplace_back(window);
        noteUnknown();
        add(window);
        static constexpr org_kde_plasma_window_listener listener = [] {
            org_kde_plasma_window_listener result{};
            result.title_changed = ignored;
            result.app_id_changed = [](void* self, org_kde_plasma_window* window, const char* applicationId) {
                static_cast<PlasmaToplevels*>(self)->setApplicationId(window, applicationId);
            };
            result.state_changed = [](void* self, org_kde_plasma_window* window, std::uint32_t state) {
                static_cast<PlasmaToplevels*>(self)->setActivated(
                    window, (state & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE) != 0);
            };
            result.virtual_desktop_changed = ignored;
            result.themed_icon_name_changed = ignored;
            result.unmapped = [](void* self, org_kde_plasma_window* window) {
                static_cast<PlasmaToplevels*>(self)->forget(window);
            };
            result.initial_state = ignored;
            result.parent_window = ignored;
            result.geometry = ignored;
            result.icon_changed = ignored;
            result.pid_changed = ignored;
            result.virtual_desktop_entered = ignored;
            result.virtual_desktop_left = ignored;
            result.application_menu = ignored;
            return result;
        }();
        org_kde_plasma_window_add_listener(window, &listener, this);
    }
    void forget(org_kde_plasma_window* window) {
        remove(window);
        std::erase_if(windows_, [window](const Window& known) { return known.get() == window; });
    }

    Manager manager_;
    std::vector<Window> windows_;
};

}  // namespace

std::unique_ptr<WaylandToplevels> WaylandToplevels::of(WaylandConnection& connection) {
    if (connection.versionOf(*WlrToplevels::managerInterface) > 0) return std::make_unique<WlrToplevels>(connection);
    if (connection.versionOf(*PlasmaToplevels::managerInterface) >= PlasmaToplevels::version) {
        return std::make_unique<PlasmaToplevels>(connection);
    }
    return nullptr;
}

void WaylandToplevels::add(const void* handle) {
    entries_.push_back({.handle = handle, .toplevel = {.number = ++lastNumber_}});
}

void WaylandToplevels::setApplicationId(const void* handle, const char* applicationId) {
    toplevelOf(handle).applicationId = applicationId;
}

void WaylandToplevels::setActivated(const void* handle, bool isActivated) {
    WaylandToplevel& toplevel = toplevelOf(handle);
    if (isActivated && !toplevel.isActivated) ++activationCount_;
    toplevel.isActivated = isActivated;
}

void WaylandToplevels::remove(const void* handle) {
    std::erase_if(entries_, [handle](const Entry& entry) { return entry.handle == handle; });
}

// Nothing is said of a window after it has closed.
WaylandToplevel& WaylandToplevels::toplevelOf(const void* handle) {
    return std::ranges::find(entries_, handle, &Entry::handle)->toplevel;
}

const WaylandToplevel* WaylandToplevels::front() const {
    const auto front = std::ranges::find_if(entries_, [](const Entry& entry) { return entry.toplevel.isActivated; });
    return front == entries_.end() ? nullptr : &front->toplevel;
}

}  // namespace ovrin
