// Chooses where the bindings of the running desktop are to be read.
#pragma once

#include <memory>

#include "base/environment.h"
#include "platform/keyboard_layout.h"
#include "platform/system_shortcuts.h"

namespace ovrin {

// Goes by XDG_CURRENT_DESKTOP; a desktop that is not known tells of no shortcuts. The layout outlives the result.
std::unique_ptr<SystemShortcuts> makeDesktopSystemShortcuts(const Environment& environment,
                                                            const KeyboardLayout& layout);

}  // namespace ovrin
