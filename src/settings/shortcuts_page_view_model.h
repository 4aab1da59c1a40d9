// The page of the settings with the global shortcuts: one row for each, in the order of the table, with the recorder of
// its combination and what there is to say about it.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "base/published.h"
#include "shortcuts/ov_shortcut.h"
#include "shortcuts/recorder_view_model.h"
#include "shortcuts/registry.h"

namespace ovrin {

class ShortcutRow {
public:
    ShortcutRow(KeyboardShortcuts::Registry& registry, OvShortcut shortcut,
                const KeyboardShortcuts::RecorderRules& rules);

    OvShortcut shortcut() const { return shortcut_; }
    KeyboardShortcuts::RecorderViewModel& recorder() { return recorder_; }

    // Why the desktop refuses the combination, until it works.
    const Published<std::optional<std::string>>& refusal() const { return refusal_; }
    // Which of our other shortcuts have the same combination. They work nevertheless: all of them at once.
    const Published<std::optional<std::string>>& sharing() const { return sharing_; }

private:
    friend class ShortcutsPageViewModel;

    OvShortcut shortcut_;
    KeyboardShortcuts::RecorderViewModel recorder_;
    Published<std::optional<std::string>> refusal_;
    Published<std::optional<std::string>> sharing_;
    Subscription states_;
};

// Main thread.
class ShortcutsPageViewModel {
public:
    // What the rules speak of outlives the page.
    ShortcutsPageViewModel(KeyboardShortcuts::Registry& registry, const KeyboardShortcuts::RecorderRules& rules);
    ShortcutsPageViewModel(const ShortcutsPageViewModel&) = delete;
    ShortcutsPageViewModel& operator=(const ShortcutsPageViewModel&) = delete;

    std::deque<ShortcutRow>& rows() { return rows_; }

    // What holds for all combinations.
    std::string note() const;

    // The user looks at the page (again): other programs may have given back what the desktop refused before, and
    // nobody tells of that.
    void didAppear();

private:
    void compareRows();
    std::optional<std::string> sharing(const ShortcutRow& row) const;

    KeyboardShortcuts::Registry& registry_;
    std::deque<ShortcutRow> rows_;
    Subscription changes_;
};

}  // namespace ovrin
