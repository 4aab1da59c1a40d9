#include "shortcuts/ov_shortcut.h"

#include <algorithm>
#include <iterator>

#include "shortcuts/action.h"

namespace ovrin {

KeyboardShortcuts::Name name(OvShortcut shortcut) {
    const ActionDescription& action = description(shortcut);
    return {.rawValue = std::string(action.shortcutName),
            .defaultShortcut = action.defaultShortcut,
            .title = std::string(action.title),
            .command = std::string(action.commandName)};
}

std::string_view title(OvShortcut shortcut) {
    return description(shortcut).title;
}

std::vector<KeyboardShortcuts::Name> allOvShortcutNames() {
    std::vector<KeyboardShortcuts::Name> names;
    std::transform(allOvShortcuts.begin(), allOvShortcuts.end(), std::back_inserter(names), name);
    return names;
}

}  // namespace ovrin
