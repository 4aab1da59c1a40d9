// The localisation table of the shortcut recorder and its alerts.
#pragma once

#include <string_view>

namespace ovrin::KeyboardShortcuts {

// The text under a key of the table:
//   "record_shortcut"                      placeholder while idle
//   "press_shortcut"                       placeholder while recording
//   "shortcut_recorder_tooltip"            tooltip
//   "keyboard_shortcut_used_by_menu_item"  alert; "%@" stands for the title of the menu item
//   "keyboard_shortcut_disallowed"         alert
//   "keyboard_shortcut_used_by_system"     alert
//   "keyboard_shortcuts_can_be_changed"    the explanatory line of the system's alert
//   "force_use_shortcut", "ok"             buttons
// The key itself when the table doesn't hold it.
std::string_view localizedRecorderText(std::string_view key);

}  // namespace ovrin::KeyboardShortcuts
