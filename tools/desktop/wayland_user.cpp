#include "desktop/wayland_user.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"
#include "fake-input-client.h"
#include "virtual-keyboard-unstable-v1-client.h"
#include "wlr-virtual-pointer-unstable-v1-client.h"

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

// What a user's hands are on. Modifiers are keys like others; what they mean is told beside them where the compositor
// does not find out by itself.
class WaylandUser::Devices {
public:
    Devices() = default;
    Devices(const Devices&) = delete;
    Devices& operator=(const Devices&) = delete;
    virtual ~Devices() = default;

    virtual void moveTo(PixelSpot spot) = 0;
    virtual void pressButton(std::uint32_t button, bool isDown) = 0;
    virtual void pressKey(std::uint32_t code, bool isDown) = 0;
    virtual void setModifiers(std::uint32_t mask) = 0;
};

class WaylandUser::VirtualDevices final : public WaylandUser::Devices {
public:
    VirtualDevices(WaylandConnection& connection, xkb_keymap* keymap)
        : pointers_(connection.bind<zwlr_virtual_pointer_manager_v1>(zwlr_virtual_pointer_manager_v1_interface, 1)),
          keyboards_(connection.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface, 1)) {
        if (pointers_ == nullptr || keyboards_ == nullptr) throw Error("the compositor has no virtual devices");
        for (const WaylandOutput& output : connection.outputs()) {
            width_ = std::max(width_, static_cast<std::uint32_t>(output.frame.x + output.frame.width));
            height_ = std::max(height_, static_cast<std::uint32_t>(output.frame.y + output.frame.height));
        }
        wl_seat* const seat = connection.bindSeat();
        pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers_, seat);
        keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards_, seat);
        wl_seat_release(seat);
        sendKeymap(keymap);
        connection.roundTrip();
    }
    ~VirtualDevices() override {
        zwp_virtual_keyboard_v1_destroy(keyboard_);
        zwlr_virtual_pointer_v1_destroy(pointer_);
        zwp_virtual_keyboard_manager_v1_destroy(keyboards_);
        zwlr_virtual_pointer_manager_v1_destroy(pointers_);
    }

    void moveTo(PixelSpot spot) override {
        zwlr_virtual_pointer_v1_motion_absolute(pointer_, now(), static_cast<std::uint32_t>(spot.x),
                                                static_cast<std::uint32_t>(spot.y), width_, height_);
        zwlr_virtual_pointer_v1_frame(pointer_);
    }
    void pressButton(std::uint32_t button, bool isDown) override {
        zwlr_virtual_pointer_v1_button(pointer_, now(), button, isDown ? 1 : 0);
        zwlr_virtual_pointer_v1_frame(pointer_);
    }
    void pressKey(std::uint32_t code, bool isDown) override {
        zwp_virtual_keyboard_v1_key(keyboard_, now(), code, isDown ? 1 : 0);
    }
    void setModifiers(std::uint32_t mask) override { zwp_virtual_keyboard_v1_modifiers(keyboard_, mask, 0, 0, 0); }

private:
    void sendKeymap(xkb_keymap* keymap) {
        char* const text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        const std::string content(text);
        std::free(text);  // NOLINT(cppcoreguidelines-no-malloc)
        const int file = ::memfd_create("keymap", MFD_CLOEXEC);
        if (::write(file, content.c_str(), content.size() + 1) < 0) throw Error("no room for a keymap");
        zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                       static_cast<std::uint32_t>(content.size() + 1));
        ::close(file);
    }

    zwlr_virtual_pointer_manager_v1* pointers_;
    zwp_virtual_keyboard_manager_v1* keyboards_;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
    // Of the layout.
    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
};

class WaylandUser::KWinDevices final : public WaylandUser::Devices {
public:
    static constexpr std::uint32_t version = 4;  // the first with keys

    explicit KWinDevices(WaylandConnection& connection)
        : input_(connection.bind<org_kde_kwin_fake_input>(org_kde_kwin_fake_input_interface, version)) {
        org_kde_kwin_fake_input_authenticate(input_, "user", "a user who is not there");
        connection.roundTrip();
    }
    ~KWinDevices() override { org_kde_kwin_fake_input_destroy(input_); }

    void moveTo(PixelSpot spot) override {
        org_kde_kwin_fake_input_pointer_motion_absolute(input_, wl_fixed_from_int(spot.x), wl_fixed_from_int(spot.y));
    }
    void pressButton(std::uint32_t button, bool isDown) override {
        org_kde_kwin_fake_input_button(input_, button, isDown ? 1 : 0);
    }
    void pressKey(std::uint32_t code, bool isDown) override {
        org_kde_kwin_fake_input_keyboard_key(input_, code, isDown ? 1 : 0);
    }
    void setModifiers(std::uint32_t /*mask*/) override {}

private:
    org_kde_kwin_fake_input* input_;
};

WaylandUser::WaylandUser(const std::string& display)
    : connection_(display.c_str()),
      context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref),
      keymap_(nullptr, &xkb_keymap_unref) {
    constexpr xkb_rule_names names{
        .rules = nullptr, .model = nullptr, .layout = "us", .variant = nullptr, .options = nullptr};
    keymap_.reset(xkb_keymap_new_from_names(context_.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (connection_.versionOf(org_kde_kwin_fake_input_interface) >= KWinDevices::version) {
        devices_ = std::make_unique<KWinDevices>(connection_);
    } else {
        devices_ = std::make_unique<VirtualDevices>(connection_, keymap_.get());
    }
}

WaylandUser::~WaylandUser() = default;

void WaylandUser::moveTo(PixelSpot spot) {
    devices_->moveTo(spot);
    connection_.roundTrip();
}

void WaylandUser::press(Button button) {
    devices_->pressButton(codeOf(button), true);
    connection_.roundTrip();
}

void WaylandUser::release(Button button) {
    devices_->pressButton(codeOf(button), false);
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

void WaylandUser::stroke(const Key& key, bool isControlHeld, bool isShiftHeld) {
    const auto maskOf = [this](const char* name) { return 1U << xkb_keymap_mod_get_index(keymap_.get(), name); };
    const bool hasShift = isShiftHeld || key.isShifted;
    if (isControlHeld) devices_->pressKey(KEY_LEFTCTRL, true);
    if (hasShift) devices_->pressKey(KEY_LEFTSHIFT, true);
    devices_->setModifiers((isControlHeld ? maskOf(XKB_MOD_NAME_CTRL) : 0) |
                           (hasShift ? maskOf(XKB_MOD_NAME_SHIFT) : 0));
    devices_->pressKey(key.code, true);
    devices_->pressKey(key.code, false);
    if (hasShift) devices_->pressKey(KEY_LEFTSHIFT, false);
    if (isControlHeld) devices_->pressKey(KEY_LEFTCTRL, false);
    devices_->setModifiers(0);
    connection_.roundTrip();
}

void WaylandUser::pressKeys(std::string_view combination) {
    const auto take = [&](std::string_view name) {
        if (!combination.starts_with(name)) return false;
        combination.remove_prefix(name.size());
        return true;
    };
    const bool isControlHeld = take("Control_L+");
    const bool isShiftHeld = take("Shift_L+");
    stroke(keyOf(xkb_keysym_from_name(std::string(combination).c_str(), XKB_KEYSYM_NO_FLAGS)), isControlHeld,
           isShiftHeld);
}

void WaylandUser::type(std::string_view text) {
    for (const char letter : text) stroke(keyOf(xkb_utf32_to_keysym(static_cast<unsigned char>(letter))), false, false);
}

}  // namespace ovrin
