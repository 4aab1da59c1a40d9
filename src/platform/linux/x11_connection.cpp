#include "platform/linux/x11_connection.h"

#include "base/error.h"

namespace ovrin {

X11Connection connectToX11(const char* display) {
    X11Connection connection(xcb_connect(display, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()) != 0) throw Error("没有可用的 X11 显示服务器。");
    return connection;
}

}  // namespace ovrin
