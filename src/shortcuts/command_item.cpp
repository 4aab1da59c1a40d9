#include "shortcuts/command_item.h"

#include <variant>

#include "shortcuts/action.h"

namespace ovrin {

std::vector<CommandItem> CommandItem::defaultItems(AssistantActions& actions,
                                                   const KeyboardShortcuts::Registry& registry) {
    std::vector<CommandItem> items;
    for (const ActionDescription& action : allActions()) {
        if (action.subtitle.empty()) continue;
        const auto shortcut = std::get<OvShortcut>(action.action);
        items.push_back({.id = std::string(action.commandName),
                         .title = std::string(action.menuTitle()),
                         .subtitle = std::string(action.subtitle),
                         .symbolName = std::string(action.symbolName),
                         .shortcutDisplay = registry.usableShortcutDisplay(name(shortcut)),
                         .action = [&actions, perform = action.perform] { perform(actions); }});
    }
    return items;
}

}  // namespace ovrin
