// The command palette without its window: the query, the commands that match it, the selection and what Return does.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "base/published.h"
#include "base/text.h"
#include "shortcuts/command_item.h"

namespace ovrin {

// Main thread.
class CommandPaletteViewModel {
public:
    // onExecute is called just before a command runs; it may destroy the view model.
    CommandPaletteViewModel(std::vector<CommandItem> items, std::function<void()> onExecute, text::CaseRules caseRules);
    CommandPaletteViewModel(const CommandPaletteViewModel&) = delete;
    CommandPaletteViewModel& operator=(const CommandPaletteViewModel&) = delete;

    const Published<std::string>& query() const { return query_; }
    const Published<int>& selectedIndex() const { return selectedIndex_; }  // into filteredItems()
    const std::vector<CommandItem>& items() const { return items_; }

    // The commands whose title or subtitle contains the trimmed query, letter case aside; all when it is empty.
    std::vector<CommandItem> filteredItems() const;

    // The selection goes back to the first command.
    void setQuery(std::string query);

    // Clamped into the filtered list: there is no wrap-around.
    void moveSelection(int delta);

    // The pointer has come over a row.
    void select(int index);

    // Runs the selected command, if any matches.
    void executeSelected();

    // A click on a row.
    void execute(int index);

private:
    std::vector<CommandItem> items_;
    std::function<void()> onExecute_;
    text::CaseRules caseRules_;
    Published<std::string> query_;
    Published<int> selectedIndex_{0};
};

}  // namespace ovrin
