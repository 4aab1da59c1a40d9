#include "platform/linux/wayland/wayland_keyboard_layout.h"

#include <xkbcommon/xkbcommon.h>

#include "platform/linux/desktop/xkb_keys.h"
#include "platform/us_keyboard_layout.h"

namespace ovrin {

WaylandKeyboardLayout::WaylandKeyboardLayout(WaylandConnection& connection)
    : layout_(std::make_unique<USKeyboardLayout>()),
      keyboard_(connection, [this](const std::string& keymap) { read(keymap); }) {}

// Programs make up keymaps for a few characters and take them back soon: one without a key that types stays out.
void WaylandKeyboardLayout::read(const std::string& keymap) {
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                                                             &xkb_context_unref);
    if (!context) return;
    const std::shared_ptr<xkb_keymap> read(
        xkb_keymap_new_from_string(context.get(), keymap.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                   XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref);
    if (!read) return;
    auto layout = std::make_unique<XkbKeyboardLayout>(XkbKeys(read), 0);
    if (layout->character(KeyboardShortcuts::Key::a)) layout_ = std::move(layout);
}

}  // namespace ovrin
