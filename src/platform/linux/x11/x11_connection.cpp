#include "platform/linux/x11/x11_connection.h"

#include <cstdint>

#include "base/error.h"

namespace ovrin {

X11Connection connectToX11(const char* display) {
    X11Connection connection(xcb_connect(display, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()) != 0) throw Error("没有可用的 X11 显示服务器。");
    return connection;
}

xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name) {
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace ovrin
