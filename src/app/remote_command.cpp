#include "app/remote_command.h"

#include <algorithm>
#include <iterator>
#include <variant>

namespace ovrin {

namespace {

std::string usage(const ActionDescription& action) {
    std::string text(action.commandName);
    if (action.action == Action(ApplicationCommand::settings)) {
        text += " [";
        for (const SettingsSection section : allSettingsSections) {
            if (section != allSettingsSections.front()) text += '|';
            text += commandName(section);
        }
        text += ']';
    }
    return text;
}

}  // namespace

std::optional<RemoteCommand> remoteCommand(std::string_view words) {
    const auto space = words.find(' ');
    const auto actions = allActions();
    const auto found = std::ranges::find(actions, words.substr(0, space), &ActionDescription::commandName);
    if (found == actions.end()) return std::nullopt;
    if (space == std::string_view::npos) return RemoteCommand{.action = found->action};
    const auto section = settingsSection(words.substr(space + 1));
    if (!section || found->action != Action(ApplicationCommand::settings)) return std::nullopt;
    return RemoteCommand{.action = found->action, .section = section};
}

std::vector<std::string> remoteCommandUsages() {
    std::vector<std::string> usages;
    std::ranges::transform(allActions(), std::back_inserter(usages), usage);
    return usages;
}

void perform(ApplicationCommand command, std::optional<SettingsSection> section, ApplicationActions& application) {
    switch (command) {
        case ApplicationCommand::history:
            return application.showHistory();
        case ApplicationCommand::settings:
            return application.showSettings(section);
        case ApplicationCommand::checkForUpdates:
            return application.checkForUpdates();
        case ApplicationCommand::reload:
            return application.reload();
        case ApplicationCommand::quit:
            return application.quit();
    }
}

void perform(const RemoteCommand& command, AssistantActions& actions, ApplicationActions& application) {
    if (const auto* shortcut = std::get_if<OvShortcut>(&command.action)) return perform(*shortcut, actions);
    perform(std::get<ApplicationCommand>(command.action), command.section, application);
}

}  // namespace ovrin
