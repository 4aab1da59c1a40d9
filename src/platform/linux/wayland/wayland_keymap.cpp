#include "platform/linux/wayland/wayland_keymap.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon.h>

namespace ovrin {
namespace {

constexpr xkb_keycode_t xkbOffset = 8;  // between the codes of XKB and those of the kernel

using Context = std::unique_ptr<xkb_context, decltype(&xkb_context_unref)>;
using Keymap = std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)>;

Context makeContext() {
    return {xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref};
}

struct Place {
    std::uint32_t key = 0;
    std::uint32_t group = 0;
};

// Of the key that has the symbol without modifiers, in the first group that has it.
std::optional<Place> placeOf(xkb_keysym_t keysym, xkb_keymap* keymap) {
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap); ++group) {
        for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap); code <= xkb_keymap_max_keycode(keymap); ++code) {
            const xkb_keysym_t* keysyms = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keymap, code, group, 0, &keysyms);
            if (count == 1 && keysyms[0] == keysym) return Place{.key = code - xkbOffset, .group = group};
        }
    }
    return std::nullopt;
}

std::optional<WaylandKeyStroke> stroke(xkb_keymap* keymap, xkb_keysym_t modifierKey, const char* modifier,
                                       const std::optional<Place>& key) {
    const std::optional<Place> held = placeOf(modifierKey, keymap);
    const xkb_mod_index_t bit = xkb_keymap_mod_get_index(keymap, modifier);
    if (!held || !key || bit == XKB_MOD_INVALID) return std::nullopt;
    return WaylandKeyStroke{.modifierKey = held->key, .modifierMask = 1U << bit, .key = key->key, .group = key->group};
}

std::optional<Place> usualPlaceOfC(xkb_keymap* keymap) {
    if (xkb_keymap_num_layouts_for_key(keymap, KEY_C + xkbOffset) == 0) return std::nullopt;
    return Place{.key = KEY_C};
}

}  // namespace

std::optional<WaylandKeymap> WaylandKeymap::read(std::string text) {
    const Context context = makeContext();
    if (!context) return std::nullopt;
    const Keymap keymap(
        xkb_keymap_new_from_string(context.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref);
    if (!keymap) return std::nullopt;
    std::optional<Place> c = placeOf(XKB_KEY_c, keymap.get());
    if (!c) c = usualPlaceOfC(keymap.get());
    const auto controlC = stroke(keymap.get(), XKB_KEY_Control_L, XKB_MOD_NAME_CTRL, c);
    const auto shiftInsert =
        stroke(keymap.get(), XKB_KEY_Shift_L, XKB_MOD_NAME_SHIFT, placeOf(XKB_KEY_Insert, keymap.get()));
    if (!controlC || !shiftInsert) return std::nullopt;
    return WaylandKeymap(std::move(text), *controlC, *shiftInsert);
}

std::optional<WaylandKeymap> WaylandKeymap::ofEnvironment() {
    const Context context = makeContext();
    if (!context) return std::nullopt;
    const Keymap keymap(xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS),
                        &xkb_keymap_unref);
    if (!keymap) return std::nullopt;
    const std::unique_ptr<char, decltype(&std::free)> text(
        xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1), &std::free);
    return text ? read(text.get()) : std::nullopt;
}

}  // namespace ovrin
