#include "shortcuts/shortcut_description.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "base/text.h"

namespace ovrin::KeyboardShortcuts {

namespace {

struct ModifierSymbol {
    Modifiers modifier;
    std::string_view symbol;
};

constexpr std::array<ModifierSymbol, 5> modifierSymbols{{
    {Modifiers::control, "⌃"},
    {Modifiers::option, "⌥"},
    {Modifiers::shift, "⇧"},
    {Modifiers::command, "⌘"},
    {Modifiers::function, "🌐︎"},
}};

struct KeySymbol {
    int code;
    std::string_view symbol;
};

// A keypad key wears the enclosing keycap, so that it is not taken for its twin.
constexpr auto specialKeys = std::to_array<KeySymbol>({
    {36, "↩"},    {48, "⇥"},   {49, "␣"},    {51, "⌫"},    {53, "⎋"},    {114, "?⃝"},   {115, "↖"},   {116, "⇞"},
    {117, "⌦"},   {119, "↘"},  {121, "⇟"},   {123, "←"},   {124, "→"},   {125, "↓"},   {126, "↑"},   {65, ".⃣"},
    {67, "*⃣"},    {69, "+⃣"},   {71, "⌧"},    {75, "/⃣"},    {76, "⌤"},    {78, "-⃣"},    {81, "=⃣"},    {82, "0⃣"},
    {83, "1⃣"},    {84, "2⃣"},   {85, "3⃣"},    {86, "4⃣"},    {87, "5⃣"},    {88, "6⃣"},    {89, "7⃣"},    {91, "8⃣"},
    {92, "9⃣"},    {122, "F1"}, {120, "F2"},  {99, "F3"},   {118, "F4"},  {96, "F5"},   {97, "F6"},   {98, "F7"},
    {100, "F8"},  {101, "F9"}, {109, "F10"}, {103, "F11"}, {111, "F12"}, {105, "F13"}, {107, "F14"}, {113, "F15"},
    {106, "F16"}, {64, "F17"}, {79, "F18"},  {80, "F19"},  {90, "F20"},
});

std::optional<std::string_view> symbolOf(Key key) {
    const auto* const found = std::find_if(specialKeys.begin(), specialKeys.end(),
                                           [&](const auto& entry) { return entry.code == key.rawValue; });
    if (found == specialKeys.end()) return std::nullopt;
    return found->symbol;
}

std::string textOf(Key key, const KeyboardLayout& layout) {
    if (const auto symbol = symbolOf(key)) return std::string(*symbol);
    const auto character = layout.character(key);
    return character ? text::uppercased(*character) : "�";
}

}  // namespace

std::string description(const Shortcut& shortcut, const KeyboardLayout& layout) {
    std::string result;
    for (const auto& [modifier, symbol] : modifierSymbols) {
        if (contains(shortcut.modifiers(), modifier)) result += symbol;
    }
    return result + textOf(shortcut.key(), layout);
}

bool isFunctionKey(Key key) {
    const auto symbol = symbolOf(key);
    return symbol && symbol->starts_with('F');
}

}  // namespace ovrin::KeyboardShortcuts
