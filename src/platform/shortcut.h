// A key combination as it is stored, compared and handed to the desktop: plain values for the registry, the seams and
// the views.
//
// Key codes and modifier bits are the numbers of the storage format. A key code names a place on the keyboard (17 is
// the key that a US keyboard labels T, whatever the current layout makes of it); the adapters map places to their own.
#pragma once

#include <cstddef>
#include <functional>

namespace ovrin::KeyboardShortcuts {

struct Key {
    int rawValue = 0;
    friend constexpr bool operator==(const Key&, const Key&) = default;

    static const Key a, s, d, c, v, w, e, t, o, k;
    static const Key returnKey, space, escape, deleteKey, forwardDelete, down, up, keypadEnter;
};

inline constexpr Key Key::a{0}, Key::s{1}, Key::d{2}, Key::c{8}, Key::v{9}, Key::w{13}, Key::e{14}, Key::t{17},
    Key::o{31}, Key::k{40};
inline constexpr Key Key::returnKey{36}, Key::space{49}, Key::escape{53}, Key::deleteKey{51}, Key::forwardDelete{117},
    Key::down{125}, Key::up{126}, Key::keypadEnter{76};

// A set of modifiers; the bits are those of the stored mask.
enum class Modifiers : int {
    none = 0,
    command = 256,
    shift = 512,
    option = 2048,
    control = 4096,
    function = 131072,
};

constexpr Modifiers operator|(Modifiers first, Modifiers second) {
    return static_cast<Modifiers>(static_cast<int>(first) | static_cast<int>(second));
}
constexpr Modifiers operator&(Modifiers first, Modifiers second) {
    return static_cast<Modifiers>(static_cast<int>(first) & static_cast<int>(second));
}
constexpr bool contains(Modifiers set, Modifiers part) {
    return (set & part) == part;
}
inline constexpr Modifiers allModifiers =
    Modifiers::command | Modifiers::shift | Modifiers::option | Modifiers::control | Modifiers::function;

struct Shortcut {
    int carbonKeyCode = 0;
    int carbonModifiers = 0;

    constexpr Shortcut() = default;
    constexpr Shortcut(Key key, Modifiers modifiers)
        : carbonKeyCode(key.rawValue), carbonModifiers(static_cast<int>(modifiers)) {}

    constexpr Key key() const { return Key{carbonKeyCode}; }
    // What the stored mask says about the five modifiers; its other bits mean nothing here.
    constexpr Modifiers modifiers() const { return static_cast<Modifiers>(carbonModifiers) & allModifiers; }

    friend constexpr bool operator==(const Shortcut&, const Shortcut&) = default;
};

}  // namespace ovrin::KeyboardShortcuts

template <>
struct std::hash<ovrin::KeyboardShortcuts::Shortcut> {
    std::size_t operator()(const ovrin::KeyboardShortcuts::Shortcut& shortcut) const noexcept {
        return std::hash<long long>{}(static_cast<long long>(shortcut.carbonModifiers) << 32 | shortcut.carbonKeyCode);
    }
};
