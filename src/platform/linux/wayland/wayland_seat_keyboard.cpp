#include "platform/linux/wayland/wayland_seat_keyboard.h"

#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace ovrin {
namespace {

constexpr auto ignored = [](auto...) {};

}  // namespace

WaylandSeatKeyboard::WaylandSeatKeyboard(WaylandConnection& connection, std::function<void(std::string)> keymapChanged)
    : keymapChanged_(std::move(keymapChanged)), seat_(connection.bindSeat()) {
    static constexpr wl_seat_listener listener = {
        [](void* self, wl_seat* /*seat*/, std::uint32_t capabilities) {
            static_cast<WaylandSeatKeyboard*>(self)->follow((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0);
        },
        ignored};
    wl_seat_add_listener(seat_.get(), &listener, this);
    connection.roundTrip();  // whether there is a keyboard
    connection.roundTrip();  // its keymap
}

void WaylandSeatKeyboard::follow(bool hasKeyboard) {
    if (!hasKeyboard) keyboard_.reset();
    if (!hasKeyboard || keyboard_) return;
    keyboard_.reset(wl_seat_get_keyboard(seat_.get()));
    static constexpr wl_keyboard_listener listener = {
        [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t format, int descriptor, std::uint32_t size) {
            static_cast<const WaylandSeatKeyboard*>(self)->takeKeymap(format, descriptor, size);
        },
        ignored,
        ignored,
        ignored,
        ignored,
        ignored};
    wl_keyboard_add_listener(keyboard_.get(), &listener, this);
}

void WaylandSeatKeyboard::takeKeymap(std::uint32_t format, int descriptor, std::uint32_t size) const {
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    ::close(descriptor);
    if (memory == MAP_FAILED) return;
    std::string text(static_cast<const char*>(memory), size);
    ::munmap(memory, size);
    text.resize(text.find_last_not_of('\0') + 1);
    if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) keymapChanged_(std::move(text));
}

}  // namespace ovrin
