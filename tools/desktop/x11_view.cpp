#include "desktop/x11_view.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "base/error.h"

namespace ovrin {
namespace {

template <typename Reply>
X11Reply<Reply> owned(Reply* reply) {
    return X11Reply<Reply>(reply);
}

X11Reply<xcb_get_property_reply_t> valueOf(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name) {
    constexpr std::uint32_t everything = std::numeric_limits<std::uint32_t>::max() / 4;
    return owned(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, everything), nullptr));
}

}  // namespace

bool DesktopWindow::hasState(std::string_view state) const {
    return std::find(states.begin(), states.end(), state) != states.end();
}

X11View::X11View(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr), &xcb_disconnect) {
    if (xcb_connection_has_error(connection()) != 0) throw Error("no X server at " + display);
}

const xcb_screen_t& X11View::screen() const {
    return *xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
}

xcb_atom_t X11View::atom(const std::string& name) const {
    if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
    const auto reply = owned(xcb_intern_atom_reply(
        connection(), xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!reply) throw Error("the X server has gone");
    return atoms_[name] = reply->atom;
}

std::string X11View::atomName(xcb_atom_t atom) const {
    const auto reply = owned(xcb_get_atom_name_reply(connection(), xcb_get_atom_name(connection(), atom), nullptr));
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

std::vector<std::uint32_t> X11View::numbers(xcb_window_t window, const std::string& property) const {
    const auto reply = valueOf(connection(), window, atom(property));
    if (!reply || reply->format != 32) return {};
    const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string X11View::text(xcb_window_t window, const std::string& property) const {
    const auto reply = valueOf(connection(), window, atom(property));
    if (!reply || reply->format != 8) return {};
    const auto* const first = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return {first, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

xcb_window_t X11View::selectionOwner(const std::string& selection) const {
    const auto reply = owned(
        xcb_get_selection_owner_reply(connection(), xcb_get_selection_owner(connection(), atom(selection)), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

std::vector<xcb_window_t> X11View::children(xcb_window_t window) const {
    const auto reply = owned(xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
    if (!reply) return {};
    const auto* const first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

std::optional<DesktopWindow> X11View::window(xcb_window_t id) const {
    const auto attributes =
        owned(xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), id), nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), id), nullptr));
    const auto position = owned(xcb_translate_coordinates_reply(
        connection(), xcb_translate_coordinates(connection(), id, root(), 0, 0), nullptr));
    if (!attributes || !geometry || !position || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return std::nullopt;

    DesktopWindow window{
        .id = id,
        .title = text(id, "_NET_WM_NAME"),
        .instance = {},
        .className = {},
        .type = {},
        .states = {},
        .area = {.x = position->dst_x, .y = position->dst_y, .width = geometry->width, .height = geometry->height},
        .isOverrideRedirect = attributes->override_redirect != 0};
    if (window.title.empty()) window.title = text(id, "WM_NAME");
    const std::string names = text(id, "WM_CLASS");  // two texts, each with a zero at its end
    window.instance = names.substr(0, names.find('\0'));
    if (names.size() > window.instance.size() + 1) window.className = names.substr(window.instance.size() + 1);
    if (!window.className.empty() && window.className.back() == '\0') window.className.pop_back();
    if (const auto types = numbers(id, "_NET_WM_WINDOW_TYPE"); !types.empty()) window.type = atomName(types.front());
    for (const std::uint32_t state : numbers(id, "_NET_WM_STATE")) window.states.push_back(atomName(state));
    return window;
}

std::vector<DesktopWindow> X11View::windows() const {
    std::vector<DesktopWindow> found;
    for (const xcb_window_t id : numbers(root(), "_NET_CLIENT_LIST")) {
        if (auto managed = window(id)) found.push_back(*std::move(managed));
    }
    for (const xcb_window_t id : children(root())) {
        if (auto unmanaged = window(id); unmanaged && unmanaged->isOverrideRedirect)
            found.push_back(*std::move(unmanaged));
    }
    return found;
}

std::vector<DesktopWindow> X11View::embeddedWindows() const {
    std::vector<DesktopWindow> found;
    for (const xcb_window_t id : children(root())) collectEmbedded(id, found);
    return found;
}

void X11View::collectEmbedded(xcb_window_t parent, std::vector<DesktopWindow>& found) const {
    for (const xcb_window_t id : children(parent)) {
        if (!numbers(id, "_XEMBED_INFO").empty()) {
            if (auto embedded = window(id)) found.push_back(*std::move(embedded));
        }
        collectEmbedded(id, found);
    }
}

xcb_window_t X11View::activeWindow() const {
    const auto active = numbers(root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : active.front();
}

void X11View::synchronize() const {
    owned(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
}

}  // namespace ovrin
