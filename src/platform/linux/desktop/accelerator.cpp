#include "platform/linux/desktop/accelerator.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <xkbcommon/xkbcommon.h>

#include "base/text.h"
#include "platform/linux/desktop/virtual_keys.h"

namespace ovrin {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

namespace {

std::optional<Modifiers> modifierNamed(std::string_view name) {
    constexpr auto names = std::to_array<std::pair<std::string_view, Modifiers>>({
        {"super", Modifiers::command},
        {"meta", Modifiers::command},
        {"mod4", Modifiers::command},
        {"shift", Modifiers::shift},
        {"alt", Modifiers::option},
        {"mod1", Modifiers::option},
        {"control", Modifiers::control},
        {"ctrl", Modifiers::control},
        {"ctl", Modifiers::control},
        {"primary", Modifiers::control},
    });
    const auto* const found = std::find_if(names.begin(), names.end(), [&](const auto& entry) {
        return text::equalsIgnoringAsciiCase(entry.first, name);
    });
    if (found == names.end()) return std::nullopt;
    return found->second;
}

std::optional<Key> keyTyping(std::string_view character, const KeyboardLayout& layout) {
    const auto keys = virtualKeys();
    const auto found = std::find_if(keys.begin(), keys.end(), [&](const VirtualKey& entry) {
        return entry.specialKeysym == XKB_KEY_NoSymbol && layout.character(entry.key) == character;
    });
    if (found == keys.end()) return std::nullopt;
    return found->key;
}

std::optional<Key> keyOfKeysym(xkb_keysym_t keysym, const KeyboardLayout& layout) {
    if (const auto special = keyOfSpecialKeysym(keysym)) return special;
    std::array<char, 8> buffer{};
    if (xkb_keysym_to_utf8(xkb_keysym_to_lower(keysym), buffer.data(), buffer.size()) <= 1) return std::nullopt;
    return keyTyping(buffer.data(), layout);
}

std::optional<Key> keyNamed(std::string_view name, const KeyboardLayout& layout) {
    // The other toolkit's names for what keysyms call otherwise.
    constexpr auto names = std::to_array<std::pair<std::string_view, std::string_view>>({
        {"Esc", "Escape"},
        {"Enter", "KP_Enter"},
        {"Backspace", "BackSpace"},
        {"Ins", "Insert"},
        {"Del", "Delete"},
        {"PgUp", "Page_Up"},
        {"PgDown", "Page_Down"},
    });
    const auto* const found =
        std::find_if(names.begin(), names.end(), [&](const auto& entry) { return entry.first == name; });
    const std::string keysymName(found == names.end() ? name : found->second);
    const auto keysym = xkb_keysym_from_name(keysymName.c_str(), XKB_KEYSYM_CASE_INSENSITIVE);
    if (keysym != XKB_KEY_NoSymbol) return keyOfKeysym(keysym, layout);
    return keyTyping(text::lowercased(name), layout);
}

std::optional<Shortcut> combination(std::string_view keyName, Modifiers modifiers, const KeyboardLayout& layout) {
    const auto key = keyNamed(keyName, layout);
    if (!key) return std::nullopt;
    return Shortcut(*key, modifiers);
}

}  // namespace

std::optional<Shortcut> parseAngledAccelerator(std::string_view text, const KeyboardLayout& layout) {
    Modifiers modifiers = Modifiers::none;
    while (text.starts_with('<')) {
        const auto end = text.find('>');
        if (end == std::string_view::npos) return std::nullopt;
        const auto modifier = modifierNamed(text.substr(1, end - 1));
        if (!modifier) return std::nullopt;
        modifiers = modifiers | *modifier;
        text.remove_prefix(end + 1);
    }
    return combination(text, modifiers, layout);
}

std::optional<Shortcut> parsePlusAccelerator(std::string_view text, const KeyboardLayout& layout) {
    Modifiers modifiers = Modifiers::none;
    // A plus at the very end is the key.
    for (auto plus = text.find('+'); plus != std::string_view::npos && plus + 1 < text.size(); plus = text.find('+')) {
        const auto modifier = modifierNamed(text.substr(0, plus));
        if (!modifier) return std::nullopt;
        modifiers = modifiers | *modifier;
        text.remove_prefix(plus + 1);
    }
    return combination(text, modifiers, layout);
}

}  // namespace ovrin
