// From the modifiers of a key event to those of shortcuts: Super is Command here, Alt is Option.
#pragma once

#include <Qt>

#include "platform/shortcut.h"

namespace ovrin {

KeyboardShortcuts::Modifiers shortcutModifiers(Qt::KeyboardModifiers modifiers);

}  // namespace ovrin
