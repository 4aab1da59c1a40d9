#include "shortcuts/recorder_texts.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ovrin::KeyboardShortcuts {

namespace {

constexpr auto table = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"record_shortcut", "录制快捷键"},
    {"press_shortcut", "请按下快捷键…"},
    {"shortcut_recorder_tooltip", "点击后按下新的组合键；按 Delete 清除，按 Esc 取消"},
    {"keyboard_shortcut_used_by_menu_item", "此组合键已用于菜单项“%@”，请换一个。"},
    {"keyboard_shortcut_disallowed", "只含 Alt（可加 Shift）的组合键不能用作全局快捷键，请加上 Super 或 Ctrl。"},
    {"keyboard_shortcut_used_by_system", "此组合键已被系统使用。"},
    {"keyboard_shortcuts_can_be_changed", "系统快捷键可在系统设置的“键盘”中更改。"},
    {"force_use_shortcut", "仍然使用"},
    {"ok", "好"},
});

}  // namespace

std::string_view localizedRecorderText(std::string_view key) {
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.first == key; });
    return found == table.end() ? key : found->second;
}

}  // namespace ovrin::KeyboardShortcuts
