// The desktop's key bindings as GSettings keeps them (GNOME and its relatives). Schemas that are not installed, and
// keys that don't hold bindings, count for nothing.
#pragma once

#include <string>
#include <vector>

#include "platform/keyboard_layout.h"
#include "platform/system_shortcuts.h"

namespace ovrin {

class GSettingsSystemShortcuts final : public SystemShortcuts {
public:
    // The layout outlives it.
    GSettingsSystemShortcuts(std::vector<std::string> schemas, const KeyboardLayout& layout);

    std::vector<KeyboardShortcuts::Shortcut> enabledShortcuts() const override;

private:
    std::vector<std::string> schemas_;
    const KeyboardLayout& layout_;
};

}  // namespace ovrin
