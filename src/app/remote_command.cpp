#include "app/remote_command.h"

#include <array>
#include <utility>

namespace ovrin {

namespace {

constexpr std::array<std::pair<std::string_view, ApplicationCommand>, 4> applicationCommands{{
    {"history", ApplicationCommand::history},
    {"settings", ApplicationCommand::settings},
    {"reload", ApplicationCommand::reload},
    {"quit", ApplicationCommand::quit},
}};

}  // namespace

std::optional<RemoteCommand> remoteCommand(std::string_view name) {
    for (const OvShortcut shortcut : allOvShortcuts) {
        if (commandName(shortcut) == name) return shortcut;
    }
    for (const auto& [known, command] : applicationCommands) {
        if (known == name) return command;
    }
    return std::nullopt;
}

std::vector<std::string_view> remoteCommandNames() {
    std::vector<std::string_view> names;
    names.reserve(allOvShortcuts.size() + applicationCommands.size());
    for (const OvShortcut shortcut : allOvShortcuts) names.push_back(commandName(shortcut));
    for (const auto& [name, command] : applicationCommands) names.push_back(name);
    return names;
}

}  // namespace ovrin
