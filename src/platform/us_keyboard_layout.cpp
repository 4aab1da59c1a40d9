#include "platform/us_keyboard_layout.h"

#include <cstddef>
#include <string_view>

namespace ovrin {

namespace {

// Indexed by key code. Spaces stand for codes of keys that type nothing on this layout, or that are shown by a symbol.
constexpr std::string_view characters = "asdfhgzxcv bqweryt123465=97-80]ou[ip lj'k;\\,/nm.  `";

}  // namespace

std::optional<std::string> USKeyboardLayout::character(KeyboardShortcuts::Key key) const {
    if (key == KeyboardShortcuts::Key::space) return " ";
    const auto index = static_cast<std::size_t>(key.rawValue);
    if (key.rawValue < 0 || index >= characters.size() || characters[index] == ' ') return std::nullopt;
    return std::string(1, characters[index]);
}

std::optional<KeyboardShortcuts::Key> USKeyboardLayout::key(std::uint32_t) const {
    return std::nullopt;
}

std::unique_ptr<const KeyboardLayout> USKeyboardLayout::snapshot() const {
    return std::make_unique<USKeyboardLayout>();
}

}  // namespace ovrin
