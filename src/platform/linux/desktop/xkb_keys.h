// Which keys a keyboard has in which places, and what they type, by its XKB keymap.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/keyboard_layout.h"
#include "platform/shortcut.h"

struct xkb_keymap;

namespace ovrin {

// A value; copies share the keymap.
class XkbKeys {
public:
    explicit XkbKeys(std::shared_ptr<xkb_keymap> keymap);

    // The key codes of XKB where the key lies; empty when this keyboard lacks it. More than one only for a key that PC
    // keyboards have in place of another.
    std::vector<std::uint32_t> keyCodes(KeyboardShortcuts::Key key) const;
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t keyCode) const;

    // The character that the key types without modifiers in the layout group of the number; none when it types none.
    std::optional<std::string> character(KeyboardShortcuts::Key key, std::uint32_t group) const;

    xkb_keymap* keymap() const { return keymap_.get(); }
    bool haveSamePlacesAs(const XkbKeys& other) const { return places_ == other.places_; }

private:
    std::shared_ptr<xkb_keymap> keymap_;
    std::vector<std::pair<KeyboardShortcuts::Key, std::uint32_t>> places_;
};

// One group of a keyboard, as it is for good. Native codes are those of XKB.
class XkbKeyboardLayout final : public KeyboardLayout {
public:
    XkbKeyboardLayout(XkbKeys keys, std::uint32_t group) : keys_(std::move(keys)), group_(group) {}

    std::optional<std::string> character(KeyboardShortcuts::Key key) const override {
        return keys_.character(key, group_);
    }
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t nativeCode) const override { return keys_.key(nativeCode); }
    std::unique_ptr<const KeyboardLayout> snapshot() const override {
        return std::make_unique<XkbKeyboardLayout>(*this);
    }

private:
    XkbKeys keys_;
    std::uint32_t group_;
};

}  // namespace ovrin
