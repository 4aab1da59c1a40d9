#include "shortcuts/command_palette_view_model.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ovrin {

CommandPaletteViewModel::CommandPaletteViewModel(std::vector<CommandItem> items, std::function<void()> onExecute,
                                                 text::CaseRules caseRules)
    : items_(std::move(items)), onExecute_(std::move(onExecute)), caseRules_(caseRules) {}

std::vector<CommandItem> CommandPaletteViewModel::filteredItems() const {
    const auto trimmed = text::trimmed(query_.value());
    if (trimmed.empty()) return items_;
    const text::CaseInsensitiveQuery wanted(trimmed, caseRules_);
    std::vector<CommandItem> matching;
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(matching), [&](const CommandItem& item) {
        return wanted.isFoundIn(item.title) || (item.subtitle && wanted.isFoundIn(*item.subtitle));
    });
    return matching;
}

void CommandPaletteViewModel::setQuery(std::string query) {
    if (query == query_.value()) return;
    // The view renders the new list with its selection at once, so the old selection must be gone by then.
    selectedIndex_.set(0);
    query_.set(std::move(query));
}

void CommandPaletteViewModel::moveSelection(int delta) {
    select(selectedIndex_.value() + delta);
}

void CommandPaletteViewModel::select(int index) {
    const int last = static_cast<int>(filteredItems().size()) - 1;
    selectedIndex_.set(last < 0 ? 0 : std::clamp(index, 0, last));
}

void CommandPaletteViewModel::executeSelected() {
    const auto matching = filteredItems();
    if (matching.empty()) return;
    const auto index = std::min(static_cast<std::size_t>(selectedIndex_.value()), matching.size() - 1);
    // Copies: onExecute closes the palette, and this object with it.
    const auto action = matching[index].action;
    const auto onExecute = onExecute_;
    onExecute();
    action();
}

void CommandPaletteViewModel::execute(int index) {
    select(index);
    executeSelected();
}

}  // namespace ovrin
