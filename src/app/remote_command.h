// What other processes can have the running assistant do: "ovrin do capture-ocr", "ovrin do settings service" and the
// session bus.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/application_actions.h"
#include "settings/settings_section.h"
#include "shortcuts/action.h"
#include "shortcuts/assistant_actions.h"

namespace ovrin {

struct RemoteCommand {
    Action action;
    std::optional<SettingsSection> section{};  // which page of the settings
};

// What the words stand for, which are parted by one space; none when they stand for nothing.
std::optional<RemoteCommand> remoteCommand(std::string_view words);

// How a user writes each command, in the order in which help lists them.
std::vector<std::string> remoteCommandUsages();

void perform(ApplicationCommand command, std::optional<SettingsSection> section, ApplicationActions& application);
void perform(const RemoteCommand& command, AssistantActions& actions, ApplicationActions& application);

}  // namespace ovrin
