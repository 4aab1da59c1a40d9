// One command of the palette, and the fixed list of them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shortcuts/assistant_actions.h"
#include "shortcuts/registry.h"

namespace ovrin {

struct CommandItem {
    std::string id;
    std::string title;
    std::optional<std::string> subtitle;
    std::string symbolName;                      // the view maps it to an icon
    std::optional<std::string> shortcutDisplay;  // as it was when the list was built
    std::function<void()> action;                // main thread

    // The twelve commands in the order of display, bound to the actions, which must outlive them.
    static std::vector<CommandItem> defaultItems(AssistantActions& actions,
                                                 const KeyboardShortcuts::Registry& registry);
};

}  // namespace ovrin
