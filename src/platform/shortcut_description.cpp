#include "platform/shortcut_description.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "base/text.h"

namespace ovrin::KeyboardShortcuts {

namespace {

struct ModifierName {
    Modifiers modifier;
    std::string_view name;
};

constexpr std::array<ModifierName, 5> modifierNames{{
    {Modifiers::command, "Super"},
    {Modifiers::control, "Ctrl"},
    {Modifiers::option, "Alt"},
    {Modifiers::shift, "Shift"},
    {Modifiers::function, "Fn"},
}};

struct KeyName {
    int code;
    std::string_view name;
};

// A key of the number pad says so, that it is not taken for its twin.
constexpr auto specialKeys = std::to_array<KeyName>({
    {36, "Return"},  {48, "Tab"},     {49, "Space"}, {51, "Backspace"}, {53, "Esc"},     {114, "Help"},  {115, "Home"},
    {116, "PageUp"}, {117, "Delete"}, {119, "End"},  {121, "PageDown"}, {123, "Left"},   {124, "Right"}, {125, "Down"},
    {126, "Up"},     {65, "Num ."},   {67, "Num *"}, {69, "Num +"},     {71, "NumLock"}, {75, "Num /"},  {76, "Enter"},
    {78, "Num -"},   {81, "Num ="},   {82, "Num 0"}, {83, "Num 1"},     {84, "Num 2"},   {85, "Num 3"},  {86, "Num 4"},
    {87, "Num 5"},   {88, "Num 6"},   {89, "Num 7"}, {91, "Num 8"},     {92, "Num 9"},   {122, "F1"},    {120, "F2"},
    {99, "F3"},      {118, "F4"},     {96, "F5"},    {97, "F6"},        {98, "F7"},      {100, "F8"},    {101, "F9"},
    {109, "F10"},    {103, "F11"},    {111, "F12"},  {105, "F13"},      {107, "F14"},    {113, "F15"},   {106, "F16"},
    {64, "F17"},     {79, "F18"},     {80, "F19"},   {90, "F20"},
});

std::optional<std::string_view> nameOf(Key key) {
    const auto* const found = std::ranges::find(specialKeys, key.rawValue, &KeyName::code);
    if (found == specialKeys.end()) return std::nullopt;
    return found->name;
}

std::string wordsOf(Key key, const KeyboardLayout& layout) {
    if (const auto name = nameOf(key)) return std::string(*name);
    const auto character = layout.character(key);
    return character ? text::uppercased(*character) : "�";
}

}  // namespace

std::string description(const Shortcut& shortcut, const KeyboardLayout& layout) {
    return description(shortcut.modifiers(), wordsOf(shortcut.key(), layout));
}

std::string description(Modifiers modifiers, std::string_view key) {
    std::string words;
    for (const auto& [modifier, name] : modifierNames) {
        if (contains(modifiers, modifier)) words.append(name).append("+");
    }
    return words.append(key);
}

bool isFunctionKey(Key key) {
    const auto name = nameOf(key);
    return name && name->starts_with('F');
}

}  // namespace ovrin::KeyboardShortcuts
