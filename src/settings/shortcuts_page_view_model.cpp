#include "settings/shortcuts_page_view_model.h"

#include "base/watch.h"

namespace ovrin {

using KeyboardShortcuts::RecorderRules;
using KeyboardShortcuts::RegistrationState;
using KeyboardShortcuts::Registry;

namespace {

std::optional<std::string> reason(const RegistrationState& state) {
    if (state.kind != RegistrationState::Kind::refused) return std::nullopt;
    return state.reason;
}

}  // namespace

ShortcutRow::ShortcutRow(Registry& registry, OvShortcut shortcut, const RecorderRules& rules)
    : shortcut_(shortcut), recorder_(registry, name(shortcut), rules) {}

ShortcutsPageViewModel::ShortcutsPageViewModel(Registry& registry, const RecorderRules& rules) : registry_(registry) {
    for (const auto shortcut : allOvShortcuts) {
        ShortcutRow& row = rows_.emplace_back(registry, shortcut, rules);
        row.states_ = watch(registry.registrationState(name(shortcut)), [this, &row](const RegistrationState& state) {
            row.refusal_.set(reason(state));
            row.sharing_.set(sharing(row));
        });
    }
    changes_ = watch(registry_.shortcutByNameDidChange(), [this](const auto& /*change*/) { compareRows(); });
}

std::string ShortcutsPageViewModel::note() const {
    if (const auto problem = registry_.problem()) return *problem + "每个命令都可以由“ovrin do”执行。";
    return "快捷键会在系统范围内生效。若与其他应用冲突，请点击对应录制框重新设置。";
}

void ShortcutsPageViewModel::didAppear() {
    registry_.synchronize();
}

void ShortcutsPageViewModel::compareRows() {
    for (auto& row : rows_) row.sharing_.set(sharing(row));
}

std::optional<std::string> ShortcutsPageViewModel::sharing(const ShortcutRow& row) const {
    const auto combination = registry_.getShortcut(name(row.shortcut()));
    if (!combination) return std::nullopt;
    std::string others;
    for (const auto& other : rows_) {
        if (&other == &row || registry_.getShortcut(name(other.shortcut())) != combination) continue;
        others.append(others.empty() ? "“" : "、“").append(title(other.shortcut())).append("”");
    }
    if (others.empty()) return std::nullopt;
    return "与" + others + (row.refusal().value() ? "相同。" : "相同，按下时一起执行。");
}

}  // namespace ovrin
