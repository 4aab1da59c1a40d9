#include "views/components/key_modifiers.h"

#include <array>
#include <utility>

namespace ovrin {

using KeyboardShortcuts::Modifiers;

Modifiers shortcutModifiers(Qt::KeyboardModifiers modifiers) {
    constexpr std::array<std::pair<Qt::KeyboardModifier, Modifiers>, 4> table{{
        {Qt::ControlModifier, Modifiers::control},
        {Qt::AltModifier, Modifiers::option},
        {Qt::ShiftModifier, Modifiers::shift},
        {Qt::MetaModifier, Modifiers::command},
    }};
    Modifiers result = Modifiers::none;
    for (const auto& [flag, modifier] : table) {
        if (modifiers.testFlag(flag)) result = result | modifier;
    }
    return result;
}

}  // namespace ovrin
