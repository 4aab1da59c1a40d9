#include "platform/linux/x11/x11_keyboard.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include "base/error.h"
#include "platform/linux/x11/virtual_keys.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;

namespace {

constexpr const char* noKeyboard = "显示服务器没有提供键盘信息。";

// Dead keys type nothing by themselves; they are called by their accent.
std::optional<std::string> accentOfDeadKey(xkb_keysym_t keysym) {
    switch (keysym) {
        case XKB_KEY_dead_grave:
            return "`";
        case XKB_KEY_dead_acute:
            return "´";
        case XKB_KEY_dead_circumflex:
            return "^";
        case XKB_KEY_dead_tilde:
            return "~";
        case XKB_KEY_dead_diaeresis:
            return "¨";
        default:
            return std::nullopt;
    }
}

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
    X11Keyboard keyboard(std::shared_ptr<xkb_keymap>(keymap, &xkb_keymap_unref));
    keyboard.readModifiers(*mapping);
    return keyboard;
}

X11Keyboard::X11Keyboard(std::shared_ptr<xkb_keymap> keymap) : keymap_(std::move(keymap)) {
    for (const auto& entry : virtualKeys()) {
        for (const auto name : entry.xkbNames) {
            if (name.empty()) continue;
            const xkb_keycode_t keyCode = xkb_keymap_key_by_name(keymap_.get(), std::string(name).c_str());
            if (keyCode == XKB_KEYCODE_INVALID || keyCode > 255) continue;
            places_.emplace_back(entry.key, static_cast<xcb_keycode_t>(keyCode));
        }
    }
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
    const auto groups = xkb_keymap_num_layouts_for_key(keymap_.get(), keyCode);
    for (xkb_layout_index_t group = 0; group < groups; ++group) {
        const auto levels = xkb_keymap_num_levels_for_key(keymap_.get(), keyCode, group);
        for (xkb_level_index_t level = 0; level < levels; ++level) {
            const xkb_keysym_t* keysyms = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), keyCode, group, level, &keysyms);
            if (std::find(keysyms, keysyms + count, keysym) != keysyms + count) return true;
        }
    }
    return false;
}

std::vector<xcb_keycode_t> X11Keyboard::keyCodes(Key key) const {
    std::vector<xcb_keycode_t> result;
    for (const auto& [known, keyCode] : places_) {
        if (known == key) result.push_back(keyCode);
    }
    return result;
}

std::optional<Key> X11Keyboard::key(std::uint32_t keyCode) const {
    const auto found =
        std::find_if(places_.begin(), places_.end(), [&](const auto& place) { return place.second == keyCode; });
    if (found == places_.end()) return std::nullopt;
    return found->first;
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

std::optional<std::string> X11Keyboard::character(Key key, std::uint32_t group) const {
    for (const auto keyCode : keyCodes(key)) {
        const auto groups = xkb_keymap_num_layouts_for_key(keymap_.get(), keyCode);
        if (groups == 0) continue;
        const xkb_keysym_t* keysyms = nullptr;
        // A key with fewer groups than the keyboard keeps its first in the others.
        const int count =
            xkb_keymap_key_get_syms_by_level(keymap_.get(), keyCode, group < groups ? group : 0, 0, &keysyms);
        if (count == 0) continue;
        if (auto accent = accentOfDeadKey(keysyms[0])) return accent;
        std::array<char, 8> buffer{};
        if (xkb_keysym_to_utf8(keysyms[0], buffer.data(), buffer.size()) > 1) return std::string(buffer.data());
    }
    return std::nullopt;
}

bool X11Keyboard::hasSameGrabsAs(const X11Keyboard& other) const {
    return places_ == other.places_ && commandMask_ == other.commandMask_ && optionMask_ == other.optionMask_ &&
           lockMask_ == other.lockMask_;
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
