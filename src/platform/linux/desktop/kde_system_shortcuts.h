// The key bindings of the KDE desktop, from the file in which its shortcut service keeps them.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/keyboard_layout.h"
#include "platform/system_shortcuts.h"

namespace ovrin {

class KdeSystemShortcuts final : public SystemShortcuts {
public:
    // file: kglobalshortcutsrc in the configuration directory; it need not exist. The layout outlives it.
    KdeSystemShortcuts(std::filesystem::path file, const KeyboardLayout& layout);

    std::vector<KeyboardShortcuts::Shortcut> enabledShortcuts() const override;

private:
    std::filesystem::path file_;
    const KeyboardLayout& layout_;
};

}  // namespace ovrin
