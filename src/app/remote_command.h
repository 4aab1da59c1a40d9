// What other processes can have the running assistant do, by name: "ovrin do capture-ocr" and the session bus.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "shortcuts/ov_shortcut.h"

namespace ovrin {

enum class ApplicationCommand : std::uint8_t {
    history,
    settings,
    reload,  // what other processes have changed about the preferences and the key
    quit
};

using RemoteCommand = std::variant<OvShortcut, ApplicationCommand>;

// None for a name that stands for nothing.
std::optional<RemoteCommand> remoteCommand(std::string_view name);

// All names, in the order in which help lists them.
std::vector<std::string_view> remoteCommandNames();

}  // namespace ovrin
