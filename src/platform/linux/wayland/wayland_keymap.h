// A keymap as a Wayland compositor gives it to programs, and where the keys of copy and paste lie in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ovrin {

// A key and the modifier key that is held meanwhile, by the codes of the kernel's input events.
struct WaylandKeyStroke {
    std::uint32_t modifierKey = 0;
    std::uint32_t modifierMask = 0;
    std::uint32_t key = 0;
    std::uint32_t group = 0;  // the layout in which the key types what it is pressed for
};

class WaylandKeymap {
public:
    // Takes a keymap apart. text: in the format that XKB calls version 1. None when it is damaged or lacks one of the
    // keys, as the keymaps that programs make up for a few characters do.
    static std::optional<WaylandKeymap> read(std::string text);

    // The keymap that the environment (XKB_DEFAULT_LAYOUT and so on) describes.
    static std::optional<WaylandKeymap> ofEnvironment();

    const std::string& text() const { return text_; }

    // Programs go by the character that a key types, so on a layout that has moved the letter its key moves too. Where
    // no layout types the letter (Cyrillic), programs take the key at its usual place.
    const WaylandKeyStroke& controlC() const { return controlC_; }
    const WaylandKeyStroke& shiftInsert() const { return shiftInsert_; }

private:
    WaylandKeymap(std::string text, const WaylandKeyStroke& controlC, const WaylandKeyStroke& shiftInsert)
        : text_(std::move(text)), controlC_(controlC), shiftInsert_(shiftInsert) {}

    std::string text_;
    WaylandKeyStroke controlC_;
    WaylandKeyStroke shiftInsert_;
};

}  // namespace ovrin
