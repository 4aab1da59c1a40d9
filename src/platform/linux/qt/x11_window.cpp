#include "platform/linux/qt/x11_window.h"

#include <QColor>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "base/error.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin::x11 {

namespace {

// The toolkit's connection, so that requests keep their order with its own; null elsewhere.
xcb_connection_t* toolkitConnection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

bool isSupported(xcb_connection_t* connection, std::string_view feature) {
    constexpr std::uint32_t most = 1024;
    const X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, rootOf(connection),
                                                atomNamed(connection, "_NET_SUPPORTED"), XCB_ATOM_ATOM, 0, most),
                               nullptr));
    if (!reply || reply->format != 32) return false;
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    const auto* end = atoms + static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(xcb_atom_t);
    return std::find(atoms, end, atomNamed(connection, feature)) != end;
}

// The server tells its time only in events: a change of a property of one's own makes one.
xcb_timestamp_t serverTime() {
    X11Connection connection(nullptr, &xcb_disconnect);
    try {
        connection = connectToX11(nullptr);
    } catch (const Error&) {
        return XCB_CURRENT_TIME;  // what the request says without knowing better
    }
    const xcb_window_t window = xcb_generate_id(connection.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, rootOf(connection.get()), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_change_property(connection.get(), XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(connection.get());
    while (const X11Event event{xcb_wait_for_event(connection.get())}) {
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
        return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
    }
    return XCB_CURRENT_TIME;
}

void askWindowManager(xcb_connection_t* connection, QWindow& window, std::string_view what,
                      const std::array<std::uint32_t, 3>& data) {
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = static_cast<xcb_window_t>(window.winId());
    request.type = atomNamed(connection, what);
    std::ranges::copy(data, request.data.data32);
    xcb_send_event(connection, 0, rootOf(connection),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&request));
    xcb_flush(connection);
}

// A request for an extension that is not there would break the connection.
bool hasXFixes(xcb_connection_t* connection) {
    const auto* const extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    return extension != nullptr && extension->present != 0;
}

}  // namespace

bool knowsOwnShadows() {
    xcb_connection_t* const connection = toolkitConnection();
    return connection != nullptr && hasXFixes(connection) && isSupported(connection, "_GTK_FRAME_EXTENTS");
}

void setShadowMargins(QWindow& window, const ShadowMargins& margins) {
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr || !hasXFixes(connection)) return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_atom_t extents = atomNamed(connection, "_GTK_FRAME_EXTENTS");
    const double scale = window.devicePixelRatio();
    const auto pixels = [scale](int points) { return static_cast<std::uint32_t>(std::lround(points * scale)); };
    if (margins.shadow == 0) {
        xcb_delete_property(connection, id, extents);
        xcb_xfixes_set_window_shape_region(connection, id, XCB_SHAPE_SK_INPUT, 0, 0, XCB_NONE);
    } else {
        const std::uint32_t shadow = pixels(margins.shadow);
        const std::array<std::uint32_t, 4> sides{shadow, shadow, shadow, shadow};
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, extents, XCB_ATOM_CARDINAL, 32, sides.size(),
                            sides.data());
        const std::uint32_t dead = pixels(margins.shadow - margins.grip);
        const xcb_rectangle_t live{static_cast<std::int16_t>(dead), static_cast<std::int16_t>(dead),
                                   static_cast<std::uint16_t>(pixels(window.width()) - 2 * dead),
                                   static_cast<std::uint16_t>(pixels(window.height()) - 2 * dead)};
        const xcb_xfixes_region_t region = xcb_generate_id(connection);
        xcb_xfixes_create_region(connection, region, 1, &live);
        xcb_xfixes_set_window_shape_region(connection, id, XCB_SHAPE_SK_INPUT, 0, 0, region);
        xcb_xfixes_destroy_region(connection, region);
    }
    xcb_flush(connection);
}

void setFirstColor(QWindow& window, const QColor& color) {
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr) return;
    const std::uint32_t pixel = qPremultiply(color.rgba());
    xcb_change_window_attributes(connection, static_cast<xcb_window_t>(window.winId()), XCB_CW_BACK_PIXEL, &pixel);
}

void keepOnEveryWorkspace(QWindow& window) {
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr) return;
    constexpr std::uint32_t all = 0xFFFFFFFF;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        atomNamed(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1, &all);
}

void activate(QWindow& window) {
    window.raise();
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr || !isSupported(connection, "_NET_ACTIVE_WINDOW")) return window.requestActivate();
    constexpr std::uint32_t fromTheUser = 2;  // the source indication of pagers and task bars
    askWindowManager(connection, window, "_NET_ACTIVE_WINDOW", {fromTheUser, serverTime(), 0});
}

bool hasInputFocus(const QWindow& window) {
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr) return false;
    const X11Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return reply && reply->focus == window.winId();
}

bool showWindowMenu(QWindow& window) {
    xcb_connection_t* const connection = toolkitConnection();
    if (connection == nullptr || !isSupported(connection, "_GTK_SHOW_WINDOW_MENU")) return false;
    const X11Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, rootOf(connection)), nullptr));
    if (!pointer) return false;
    // The press that asks for the menu holds the pointer, which the menu needs.
    xcb_ungrab_pointer(connection, XCB_CURRENT_TIME);
    constexpr std::uint32_t anyDevice = 0;
    askWindowManager(
        connection, window, "_GTK_SHOW_WINDOW_MENU",
        {anyDevice, static_cast<std::uint32_t>(pointer->root_x), static_cast<std::uint32_t>(pointer->root_y)});
    return true;
}

}  // namespace ovrin::x11
