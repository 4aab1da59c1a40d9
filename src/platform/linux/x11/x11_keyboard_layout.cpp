#include "platform/linux/x11/x11_keyboard_layout.h"

#include <utility>

#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

using KeyboardShortcuts::Key;

X11KeyboardLayout::X11KeyboardLayout(const char* display)
    : connection_(connectToX11(display)),
      keyboardEvent_(followX11Keyboard(connection_.get())),
      keyboard_(readX11KeyboardOrThrow(connection_.get())) {}

std::optional<std::string> X11KeyboardLayout::character(Key key) const {
    const X11Keyboard* const current = keyboard();
    return current != nullptr ? current->keys().character(key, currentGroup()) : fallback_.character(key);
}

std::optional<Key> X11KeyboardLayout::key(std::uint32_t nativeCode) const {
    const X11Keyboard* const current = keyboard();
    return current != nullptr ? current->keys().key(nativeCode) : fallback_.key(nativeCode);
}

std::unique_ptr<const KeyboardLayout> X11KeyboardLayout::snapshot() const {
    const X11Keyboard* const current = keyboard();
    if (current == nullptr) return fallback_.snapshot();
    return std::make_unique<XkbKeyboardLayout>(current->keys(), currentGroup());
}

const X11Keyboard* X11KeyboardLayout::keyboard() const {
    bool hasChanged = false;
    while (const auto event = X11Event(xcb_poll_for_event(connection_.get()))) {
        hasChanged = hasChanged || event->response_type == keyboardEvent_;
    }
    if (hasChanged) {
        if (auto changed = X11Keyboard::read(connection_.get())) keyboard_ = std::move(*changed);
    }
    return xcb_connection_has_error(connection_.get()) == 0 ? &keyboard_ : nullptr;
}

std::uint32_t X11KeyboardLayout::currentGroup() const {
    auto* const connection = connection_.get();
    const X11Reply<xcb_xkb_get_state_reply_t> reply(
        xcb_xkb_get_state_reply(connection, xcb_xkb_get_state_unchecked(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    return reply ? reply->group : 0;
}

}  // namespace ovrin
