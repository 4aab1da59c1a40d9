#include "platform/linux/wayland/wayland_keys.h"

#include <chrono>
#include <cstdint>
#include <optional>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fake-input-client.h"
#include "virtual-keyboard-unstable-v1-client.h"

namespace ovrin {
namespace {

std::uint32_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

// A keyboard of the seat's beside those that the user has. The compositor keeps the modifiers of each apart: keys that
// the user still holds from a shortcut change nothing.
class VirtualKeyboard final : public WaylandKeys {
public:
    static constexpr const wl_interface* managerInterface = &zwp_virtual_keyboard_manager_v1_interface;

    VirtualKeyboard(WaylandConnection& connection, wl_seat* seat)
        : manager_(connection.bind<zwp_virtual_keyboard_manager_v1>(*managerInterface, 1)),
          keyboard_(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager_, seat)) {}
    VirtualKeyboard(const VirtualKeyboard&) = delete;
    VirtualKeyboard& operator=(const VirtualKeyboard&) = delete;
    ~VirtualKeyboard() override {
        zwp_virtual_keyboard_v1_destroy(keyboard_);
        zwp_virtual_keyboard_manager_v1_destroy(manager_);
    }

    void useKeymap(const WaylandKeymap& keymap) override {
        const std::size_t size = keymap.text().size() + 1;
        const int file = ::memfd_create("keymap", MFD_CLOEXEC);
        if (::write(file, keymap.text().c_str(), size) == static_cast<ssize_t>(size)) {
            zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                           static_cast<std::uint32_t>(size));
            hasKeymap_ = true;
        }
        ::close(file);
    }

    // Compositors don't derive a virtual keyboard's modifiers from its keys, and tell them to input methods, too.
    void press(const WaylandKeyStroke& stroke) override {
        if (!hasKeymap_) return;
        key(stroke.modifierKey, WL_KEYBOARD_KEY_STATE_PRESSED);
        zwp_virtual_keyboard_v1_modifiers(keyboard_, stroke.modifierMask, 0, 0, stroke.group);
        key(stroke.key, WL_KEYBOARD_KEY_STATE_PRESSED);
        key(stroke.key, WL_KEYBOARD_KEY_STATE_RELEASED);
        key(stroke.modifierKey, WL_KEYBOARD_KEY_STATE_RELEASED);
        zwp_virtual_keyboard_v1_modifiers(keyboard_, 0, 0, 0, stroke.group);
    }

private:
    void key(std::uint32_t code, std::uint32_t state) { zwp_virtual_keyboard_v1_key(keyboard_, now(), code, state); }

    zwp_virtual_keyboard_manager_v1* manager_;
    zwp_virtual_keyboard_v1* keyboard_;
    bool hasKeymap_ = false;
};

// KWin takes keys from programs whose desktop entry asks for that (X-KDE-Wayland-Interfaces), as if they came from the
// user's keyboard, with its keymap and modifiers.
class KWinFakeInput final : public WaylandKeys {
public:
    static constexpr const wl_interface* managerInterface = &org_kde_kwin_fake_input_interface;
    static constexpr std::uint32_t version = 4;  // the first with keys

    explicit KWinFakeInput(WaylandConnection& connection)
        : input_(connection.bind<org_kde_kwin_fake_input>(*managerInterface, version)) {
        org_kde_kwin_fake_input_authenticate(input_, "Ovrin", "读取和替换选中的文字");
    }
    KWinFakeInput(const KWinFakeInput&) = delete;
    KWinFakeInput& operator=(const KWinFakeInput&) = delete;
    ~KWinFakeInput() override { org_kde_kwin_fake_input_destroy(input_); }

    void useKeymap(const WaylandKeymap& /*keymap*/) override {}

    void press(const WaylandKeyStroke& stroke) override {
        // Those that the user still holds from a shortcut would make another combination of it. Releasing one that is
        // not held does nothing.
        for (const std::uint32_t modifier : {KEY_LEFTMETA, KEY_RIGHTMETA, KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTALT,
                                             KEY_RIGHTALT, KEY_LEFTCTRL, KEY_RIGHTCTRL}) {
            key(modifier, WL_KEYBOARD_KEY_STATE_RELEASED);
        }
        key(stroke.modifierKey, WL_KEYBOARD_KEY_STATE_PRESSED);
        key(stroke.key, WL_KEYBOARD_KEY_STATE_PRESSED);
        key(stroke.key, WL_KEYBOARD_KEY_STATE_RELEASED);
        held_ = stroke.modifierKey;
    }

    // KWin gives keys to the input method, which gives them back, and modifiers to the program itself: released at
    // once, they overtake the key, and the program is written a "c" instead of copying.
    void letGo() override {
        if (held_) key(*held_, WL_KEYBOARD_KEY_STATE_RELEASED);
        held_.reset();
    }

private:
    void key(std::uint32_t code, std::uint32_t state) { org_kde_kwin_fake_input_keyboard_key(input_, code, state); }

    org_kde_kwin_fake_input* input_;
    std::optional<std::uint32_t> held_;
};

bool offersVirtualKeyboard(const WaylandConnection& connection) {
    return connection.versionOf(*VirtualKeyboard::managerInterface) > 0;
}

bool offersFakeInput(const WaylandConnection& connection) {
    return connection.versionOf(*KWinFakeInput::managerInterface) >= KWinFakeInput::version;
}

}  // namespace

std::string WaylandKeys::mechanism(const WaylandConnection& connection) {
    if (offersVirtualKeyboard(connection)) return "virtual keyboard";
    return offersFakeInput(connection) ? "KWin fake input" : "";
}

std::unique_ptr<WaylandKeys> WaylandKeys::of(WaylandConnection& connection, wl_seat* seat) {
    if (offersVirtualKeyboard(connection)) return std::make_unique<VirtualKeyboard>(connection, seat);
    if (offersFakeInput(connection)) return std::make_unique<KWinFakeInput>(connection);
    return nullptr;
}

}  // namespace ovrin
