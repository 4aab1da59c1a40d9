#include "platform/linux/x11/x11_keyboard.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include "base/error.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;

namespace {

constexpr const char* noKeyboard = "显示服务器没有提供键盘信息。";

}  // namespace

std::optional<X11Keyboard> X11Keyboard::read(xcb_connection_t* connection) {
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                                                             &xkb_context_unref);
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (!context || device < 0) return std::nullopt;
    xkb_keymap* const keymap =
        xkb_x11_keymap_new_from_device(context.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    const X11Reply<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping_unchecked(connection), nullptr));
    if (keymap == nullptr || !mapping) {
        xkb_keymap_unref(keymap);
        return std::nullopt;
    }
    X11Keyboard keyboard(XkbKeys(std::shared_ptr<xkb_keymap>(keymap, &xkb_keymap_unref)));
    keyboard.readModifiers(*mapping);
    return keyboard;
}

void X11Keyboard::readModifiers(const xcb_get_modifier_mapping_reply_t& mapping) {
    const xcb_keycode_t* const keyCodes = xcb_get_modifier_mapping_keycodes(&mapping);
    const std::size_t perModifier = mapping.keycodes_per_modifier;
    lockMask_ = XCB_MOD_MASK_LOCK;
    // The first three bits (Shift, Lock, Control) have fixed meanings; the other five mean what their keys say.
    for (std::size_t modifier = XCB_MAP_INDEX_1; modifier <= XCB_MAP_INDEX_5; ++modifier) {
        const auto bit = static_cast<std::uint16_t>(1u << modifier);
        for (std::size_t index = 0; index < perModifier; ++index) {
            const xcb_keycode_t keyCode = keyCodes[modifier * perModifier + index];
            if (keyCode == 0) continue;
            const auto means = [&](xkb_keysym_t left, xkb_keysym_t right) {
                return types(keyCode, left) || types(keyCode, right);
            };
            if (commandMask_ == 0 && means(XKB_KEY_Super_L, XKB_KEY_Super_R)) commandMask_ = bit;
            if (optionMask_ == 0 && means(XKB_KEY_Alt_L, XKB_KEY_Alt_R)) optionMask_ = bit;
            if (means(XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock)) lockMask_ |= bit;
        }
    }
}

bool X11Keyboard::types(xcb_keycode_t keyCode, std::uint32_t keysym) const {
    const auto groups = xkb_keymap_num_layouts_for_key(keys_.keymap(), keyCode);
    for (xkb_layout_index_t group = 0; group < groups; ++group) {
        const auto levels = xkb_keymap_num_levels_for_key(keys_.keymap(), keyCode, group);
        for (xkb_level_index_t level = 0; level < levels; ++level) {
            const xkb_keysym_t* keysyms = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keys_.keymap(), keyCode, group, level, &keysyms);
            if (std::find(keysyms, keysyms + count, keysym) != keysyms + count) return true;
        }
    }
    return false;
}

std::vector<xcb_keycode_t> X11Keyboard::keyCodes(Key key) const {
    const std::vector<std::uint32_t> codes = keys_.keyCodes(key);
    return {codes.begin(), codes.end()};
}

std::optional<std::uint16_t> X11Keyboard::modifierMask(Modifiers modifiers) const {
    const std::array<std::pair<Modifiers, std::uint16_t>, 5> masks{{
        {Modifiers::command, commandMask_},
        {Modifiers::shift, XCB_MOD_MASK_SHIFT},
        {Modifiers::option, optionMask_},
        {Modifiers::control, XCB_MOD_MASK_CONTROL},
        {Modifiers::function, 0},  // handled inside the keyboards that have it
    }};
    std::uint16_t result = 0;
    for (const auto& [modifier, mask] : masks) {
        if (!contains(modifiers, modifier)) continue;
        if (mask == 0) return std::nullopt;
        result |= mask;
    }
    return result;
}

bool X11Keyboard::hasSameGrabsAs(const X11Keyboard& other) const {
    return keys_.haveSamePlacesAs(other.keys_) && commandMask_ == other.commandMask_ &&
           optionMask_ == other.optionMask_ && lockMask_ == other.lockMask_;
}

std::uint8_t followX11Keyboard(xcb_connection_t* connection) {
    std::uint8_t firstEvent = 0;
    const int isThere =
        xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent, nullptr);
    if (isThere == 0) throw Error(noKeyboard);
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t mapParts = 0xff;
    xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, mapParts, mapParts, nullptr);
    return firstEvent;
}

X11Keyboard readX11KeyboardOrThrow(xcb_connection_t* connection) {
    auto keyboard = X11Keyboard::read(connection);
    if (!keyboard) throw Error(noKeyboard);
    return std::move(*keyboard);
}

}  // namespace ovrin
