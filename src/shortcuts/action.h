// The one table of what the user can have the program do. The menu, the palette, the settings page of the shortcuts,
// "ovrin do" and its help read their names, titles, icons and defaults from it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "platform/shortcut.h"
#include "shortcuts/assistant_actions.h"
#include "shortcuts/ov_shortcut.h"

namespace ovrin {

// What concerns the program itself. No global shortcut can be given to it.
enum class ApplicationCommand : std::uint8_t {
    history,
    settings,
    checkForUpdates,
    reload,  // what other processes have changed about the preferences and the key
    quit
};

using Action = std::variant<OvShortcut, ApplicationCommand>;

struct ActionDescription {
    Action action;
    std::string_view commandName;     // on the command line and in the palette: "capture-ocr"
    std::string_view title;           // on the settings page of the shortcuts
    std::string_view commandTitle{};  // in the menu and the palette, where it differs
    std::string_view subtitle{};      // in the palette; empty: the palette does not offer it
    std::string_view symbolName{};    // OVIcon(systemSymbol) makes the icon of it
    std::string_view shortcutName{};  // under which its combination is stored: "ovrin.captureOCR"
    std::optional<KeyboardShortcuts::Shortcut> defaultShortcut{};
    void (*perform)(AssistantActions&) = nullptr;  // of global shortcuts

    // What the menu and the palette call it.
    std::string_view menuTitle() const { return commandTitle.empty() ? title : commandTitle; }
};

// The global shortcuts first, in the order of their enumeration, then the commands of the program.
std::span<const ActionDescription> allActions();

const ActionDescription& description(Action action);

}  // namespace ovrin
