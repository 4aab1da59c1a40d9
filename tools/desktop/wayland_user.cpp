#include "desktop/wayland_user.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {

namespace {

constexpr std::uint32_t firstKernelCode = 8;  // of XKB, which counts from there

std::uint32_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

std::uint32_t codeOf(WaylandUser::Button button) {
    return button == WaylandUser::Button::left ? BTN_LEFT : BTN_RIGHT;
}

}  // namespace

WaylandUser::WaylandUser(const std::string& display)
    : connection_(display.c_str()),
      pointers_(connection_.bind<zwlr_virtual_pointer_manager_v1>(zwlr_virtual_pointer_manager_v1_interface, 1)),
      keyboards_(connection_.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface, 1)),
      context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref),
      keymap_(nullptr, &xkb_keymap_unref) {
    if (pointers_ == nullptr || keyboards_ == nullptr) throw Error("the compositor has no virtual devices");
    for (const WaylandOutput& output : connection_.outputs()) {
        width_ = std::max(width_, static_cast<std::uint32_t>(output.frame.x + output.frame.width));
        height_ = std::max(height_, static_cast<std::uint32_t>(output.frame.y + output.frame.height));
    }
    wl_seat* const seat = connection_.bindSeat();
    pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers_, seat);
    keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards_, seat);
    wl_seat_release(seat);
    constexpr xkb_rule_names names{
        .rules = nullptr, .model = nullptr, .layout = "us", .variant = nullptr, .options = nullptr};
    keymap_.reset(xkb_keymap_new_from_names(context_.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    sendKeymap();
    connection_.roundTrip();
}

WaylandUser::~WaylandUser() {
    zwp_virtual_keyboard_v1_destroy(keyboard_);
    zwlr_virtual_pointer_v1_destroy(pointer_);
    zwp_virtual_keyboard_manager_v1_destroy(keyboards_);
    zwlr_virtual_pointer_manager_v1_destroy(pointers_);
}

void WaylandUser::sendKeymap() {
    char* const text = xkb_keymap_get_as_string(keymap_.get(), XKB_KEYMAP_FORMAT_TEXT_V1);
    const std::string content(text);
    std::free(text);  // NOLINT(cppcoreguidelines-no-malloc)
    const int file = ::memfd_create("keymap", MFD_CLOEXEC);
    if (::write(file, content.c_str(), content.size() + 1) < 0) throw Error("no room for a keymap");
    zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                   static_cast<std::uint32_t>(content.size() + 1));
    connection_.roundTrip();
    ::close(file);
}

void WaylandUser::moveTo(PixelSpot spot) {
    zwlr_virtual_pointer_v1_motion_absolute(pointer_, now(), static_cast<std::uint32_t>(spot.x),
                                            static_cast<std::uint32_t>(spot.y), width_, height_);
    zwlr_virtual_pointer_v1_frame(pointer_);
    connection_.roundTrip();
}

void WaylandUser::press(Button button) {
    zwlr_virtual_pointer_v1_button(pointer_, now(), codeOf(button), WL_POINTER_BUTTON_STATE_PRESSED);
    zwlr_virtual_pointer_v1_frame(pointer_);
    connection_.roundTrip();
}

void WaylandUser::release(Button button) {
    zwlr_virtual_pointer_v1_button(pointer_, now(), codeOf(button), WL_POINTER_BUTTON_STATE_RELEASED);
    zwlr_virtual_pointer_v1_frame(pointer_);
    connection_.roundTrip();
}

void WaylandUser::click(PixelSpot spot, Button button) {
    moveTo(spot);
    press(button);
    release(button);
}

void WaylandUser::drag(PixelSpot from, PixelSpot to) {
    moveTo(from);
    press();
    constexpr int steps = 5;
    for (int step = 1; step <= steps; ++step) {
        moveTo({.x = from.x + (to.x - from.x) * step / steps, .y = from.y + (to.y - from.y) * step / steps});
    }
    release();
}

WaylandUser::Key WaylandUser::keyOf(xkb_keysym_t symbol) const {
    for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap_.get()); code <= xkb_keymap_max_keycode(keymap_.get());
         ++code) {
        for (xkb_level_index_t level = 0; level < std::min(2U, xkb_keymap_num_levels_for_key(keymap_.get(), code, 0));
             ++level) {
            const xkb_keysym_t* symbols = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, 0, level, &symbols);
            if (count == 1 && *symbols == symbol) return {.code = code - firstKernelCode, .isShifted = level == 1};
        }
    }
    throw Error("the keyboard has no such key");
}

void WaylandUser::stroke(const Key& key, std::uint32_t modifiers) {
    const std::uint32_t shift = 1U << xkb_keymap_mod_get_index(keymap_.get(), XKB_MOD_NAME_SHIFT);
    zwp_virtual_keyboard_v1_modifiers(keyboard_, key.isShifted ? modifiers | shift : modifiers, 0, 0, 0);
    zwp_virtual_keyboard_v1_key(keyboard_, now(), key.code, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_key(keyboard_, now(), key.code, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_modifiers(keyboard_, 0, 0, 0, 0);
    connection_.roundTrip();
}

void WaylandUser::pressKeys(std::string_view combination) {
    std::uint32_t modifiers = 0;
    const auto add = [&](std::string_view name, const char* modifier) {
        if (!combination.starts_with(name)) return false;
        combination.remove_prefix(name.size());
        modifiers |= 1U << xkb_keymap_mod_get_index(keymap_.get(), modifier);
        return true;
    };
    while (add("Control_L+", XKB_MOD_NAME_CTRL) || add("Shift_L+", XKB_MOD_NAME_SHIFT)) continue;
    stroke(keyOf(xkb_keysym_from_name(std::string(combination).c_str(), XKB_KEYSYM_NO_FLAGS)), modifiers);
}

void WaylandUser::type(std::string_view text) {
    for (const char letter : text) stroke(keyOf(xkb_utf32_to_keysym(static_cast<unsigned char>(letter))), 0);
}

}  // namespace ovrin
