#include "platform/linux/wayland/wayland_synthetic_keyboard.h"

#include <chrono>
#include <string>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/terminal_program.h"

namespace ovrin {
namespace {

// A compositor that is busy for longer is not waited for: what it told last counts.
constexpr std::chrono::milliseconds timeToCatchUp{100};

std::uint32_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

constexpr auto ignored = [](auto...) {};

}  // namespace

bool WaylandSimulateKeyboard::isOfferedBy(const WaylandConnection& connection) {
    return WaylandDataDevice::isOfferedBy(connection) &&
           connection.versionOf(zwp_virtual_keyboard_manager_v1_interface) > 0;
}

WaylandSimulateKeyboard::WaylandSimulateKeyboard(const char* name)
    : connection_(name),
      toplevels_(connection_),
      manager_(connection_.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface, 1)) {
    device_.emplace(connection_, [this](SelectionClient::Source source) {
        if (source != SelectionClient::Source::primary) return;
        const WaylandToplevel* const front = toplevels_.front();
        // What is selected at the start may be anybody's.
        selecting_ = device_ && front != nullptr ? Window{front->number} : Window::nowhere;
    });
    seat_ = connection_.bind<wl_seat>(wl_seat_interface, 5);
    static constexpr wl_seat_listener listener = {[](void* self, wl_seat* /*seat*/, std::uint32_t capabilities) {
                                                      static_cast<WaylandSimulateKeyboard*>(self)->followKeyboard(
                                                          (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0);
                                                  },
                                                  ignored};
    wl_seat_add_listener(seat_, &listener, this);
    connection_.roundTrip();  // whether there is a keyboard
    connection_.roundTrip();  // its keymap
    if (!keymap_) keymap_ = WaylandKeymap::ofEnvironment();
    // Now and not for the first stroke: compositors take the focus away from the window in front for a moment, and
    // where this is the first keyboard, programs do not listen to it yet.
    if (isTrusted() && prepareVirtualKeyboard()) connection_.roundTrip();
}

WaylandSimulateKeyboard::~WaylandSimulateKeyboard() {
    if (virtualKeyboard_ != nullptr) zwp_virtual_keyboard_v1_destroy(virtualKeyboard_);
    if (manager_ != nullptr) zwp_virtual_keyboard_manager_v1_destroy(manager_);
    if (keyboard_ != nullptr) wl_keyboard_release(keyboard_);
    wl_seat_release(seat_);
}

// Without a compositor no keys reach anybody.
void WaylandSimulateKeyboard::attend(const std::function<void()>& work) {
    try {
        if (!isLost_) work();
    } catch (const Error&) {
        isLost_ = wl_display_get_error(connection_.display()) != 0;
    }
}

bool WaylandSimulateKeyboard::process() {
    attend([this] { connection_.wait({}, WaylandConnection::Clock::now()); });
    return !isLost_;
}

void WaylandSimulateKeyboard::catchUp() {
    attend([this] { connection_.roundTrip(timeToCatchUp); });
}

bool WaylandSimulateKeyboard::isTrusted() {
    return manager_ != nullptr && !isLost_;
}

bool WaylandSimulateKeyboard::reachesOtherProgram() {
    catchUp();
    if (!toplevels_.areKnown()) return true;
    const WaylandToplevel* const front = toplevels_.front();
    return front != nullptr && front->applicationId != applicationId;
}

SimulateKeyboard::Window WaylandSimulateKeyboard::frontWindow() {
    catchUp();
    const WaylandToplevel* const front = toplevels_.front();
    return front != nullptr ? Window{front->number} : Window::nowhere;
}

SimulateKeyboard::Selection WaylandSimulateKeyboard::selection() {
    catchUp();
    const WaylandToplevel* const front = toplevels_.front();
    if (front == nullptr || !isTerminalProgram(front->applicationId)) return Selection::copied;
    const bool isItsOwn =
        selecting_ == Window{front->number} && !device_->types(SelectionClient::Source::primary).empty();
    return isItsOwn ? Selection::shown : Selection::absent;
}

void WaylandSimulateKeyboard::copy() {
    if (selection() == Selection::copied && keymap_) press(keymap_->controlC());
}

void WaylandSimulateKeyboard::paste() {
    if (selection() == Selection::copied && keymap_) press(keymap_->shiftInsert());
}

void WaylandSimulateKeyboard::followKeyboard(bool hasKeyboard) {
    if (!hasKeyboard && keyboard_ != nullptr) wl_keyboard_release(std::exchange(keyboard_, nullptr));
    if (!hasKeyboard || keyboard_ != nullptr) return;
    keyboard_ = wl_seat_get_keyboard(seat_);
    static constexpr wl_keyboard_listener listener = {
        [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t format, int descriptor, std::uint32_t size) {
            static_cast<WaylandSimulateKeyboard*>(self)->takeKeymap(format, descriptor, size);
        },
        ignored,
        ignored,
        ignored,
        ignored,
        ignored};
    wl_keyboard_add_listener(keyboard_, &listener, this);
}

void WaylandSimulateKeyboard::takeKeymap(std::uint32_t format, int descriptor, std::uint32_t size) {
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    ::close(descriptor);
    if (memory == MAP_FAILED) return;
    std::string text(static_cast<const char*>(memory), size);
    ::munmap(memory, size);
    text.resize(text.find_last_not_of('\0') + 1);
    if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 || text == givenKeymap_) return;
    if (std::optional<WaylandKeymap> keymap = WaylandKeymap::read(std::move(text))) keymap_ = std::move(keymap);
}

// Gives it the keymap of the seat's own keyboard, so that programs that go by a key's place understand it as well.
// False when that is not possible.
bool WaylandSimulateKeyboard::prepareVirtualKeyboard() {
    if (virtualKeyboard_ == nullptr) {
        virtualKeyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager_, seat_);
    }
    if (!keymap_) return false;
    if (givenKeymap_ == keymap_->text()) return true;
    const std::size_t size = keymap_->text().size() + 1;
    const int file = ::memfd_create("keymap", MFD_CLOEXEC);
    const bool isWritten = ::write(file, keymap_->text().c_str(), size) == static_cast<ssize_t>(size);
    if (isWritten) {
        zwp_virtual_keyboard_v1_keymap(virtualKeyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                       static_cast<std::uint32_t>(size));
        givenKeymap_ = keymap_->text();
    }
    ::close(file);
    return isWritten;
}

// Compositors don't derive a virtual keyboard's modifiers from its keys.
void WaylandSimulateKeyboard::press(const WaylandKeyStroke& stroke) {
    if (!isTrusted() || !prepareVirtualKeyboard()) return;
    key(stroke.modifierKey, true);
    zwp_virtual_keyboard_v1_modifiers(virtualKeyboard_, stroke.modifierMask, 0, 0, stroke.group);
    key(stroke.key, true);
    key(stroke.key, false);
    key(stroke.modifierKey, false);
    zwp_virtual_keyboard_v1_modifiers(virtualKeyboard_, 0, 0, 0, stroke.group);
    catchUp();
}

void WaylandSimulateKeyboard::key(std::uint32_t code, bool isPressed) {
    zwp_virtual_keyboard_v1_key(virtualKeyboard_, now(), code,
                                isPressed ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
}

}  // namespace ovrin
