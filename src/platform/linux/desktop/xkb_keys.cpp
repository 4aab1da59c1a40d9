#include "platform/linux/desktop/xkb_keys.h"

#include <algorithm>
#include <array>

#include <xkbcommon/xkbcommon.h>

#include "platform/linux/desktop/virtual_keys.h"

namespace ovrin {

using KeyboardShortcuts::Key;

namespace {

// Dead keys type nothing by themselves; they are called by their accent.
std::optional<std::string> accentOfDeadKey(xkb_keysym_t keysym) {
    switch (keysym) {
        case XKB_KEY_dead_grave:
            return "`";
        case XKB_KEY_dead_acute:
            return "´";
        case XKB_KEY_dead_circumflex:
            return "^";
        case XKB_KEY_dead_tilde:
            return "~";
        case XKB_KEY_dead_diaeresis:
            return "¨";
        default:
            return std::nullopt;
    }
}

}  // namespace

XkbKeys::XkbKeys(std::shared_ptr<xkb_keymap> keymap) : keymap_(std::move(keymap)) {
    for (const auto& entry : virtualKeys()) {
        for (const auto name : entry.xkbNames) {
            if (name.empty()) continue;
            const xkb_keycode_t keyCode = xkb_keymap_key_by_name(keymap_.get(), std::string(name).c_str());
            if (keyCode == XKB_KEYCODE_INVALID || keyCode > 255) continue;
            places_.emplace_back(entry.key, static_cast<std::uint32_t>(keyCode));
        }
    }
}

std::vector<std::uint32_t> XkbKeys::keyCodes(Key key) const {
    std::vector<std::uint32_t> result;
    for (const auto& [known, keyCode] : places_) {
        if (known == key) result.push_back(keyCode);
    }
    return result;
}

std::optional<Key> XkbKeys::key(std::uint32_t keyCode) const {
    const auto found =
        std::find_if(places_.begin(), places_.end(), [&](const auto& place) { return place.second == keyCode; });
    if (found == places_.end()) return std::nullopt;
    return found->first;
}

std::optional<std::string> XkbKeys::character(Key key, std::uint32_t group) const {
    for (const auto keyCode : keyCodes(key)) {
        const auto groups = xkb_keymap_num_layouts_for_key(keymap_.get(), keyCode);
        if (groups == 0) continue;
        const xkb_keysym_t* keysyms = nullptr;
        // A key with fewer groups than the keyboard keeps its first in the others.
        const int count =
            xkb_keymap_key_get_syms_by_level(keymap_.get(), keyCode, group < groups ? group : 0, 0, &keysyms);
        if (count == 0) continue;
        if (auto accent = accentOfDeadKey(keysyms[0])) return accent;
        std::array<char, 8> buffer{};
        if (xkb_keysym_to_utf8(keysyms[0], buffer.data(), buffer.size()) > 1) return std::string(buffer.data());
    }
    return std::nullopt;
}

}  // namespace ovrin
