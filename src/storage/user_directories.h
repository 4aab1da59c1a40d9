// Where the program keeps its files for the user. Nothing here touches the disk.
#pragma once

#include <filesystem>

#include "base/environment.h"

namespace ovrin {

// That of all programs: $XDG_CONFIG_HOME, else ~/.config; the temporary directory when the environment names no home.
std::filesystem::path userConfigurationDirectory(const Environment& environment);

// $XDG_CONFIG_HOME/Ovrin, else ~/.config/Ovrin; under the temporary directory when the environment names no home.
std::filesystem::path configurationDirectory(const Environment& environment);

// $XDG_DATA_HOME/Ovrin, else ~/.local/share/Ovrin; under the temporary directory when the environment names no home.
std::filesystem::path applicationSupportDirectory(const Environment& environment);

// $XDG_STATE_HOME/Ovrin, else ~/.local/state/Ovrin; under the temporary directory when the environment names no home.
std::filesystem::path stateDirectory(const Environment& environment);

// $XDG_CACHE_HOME/Ovrin, else ~/.cache/Ovrin; under the temporary directory when the environment names no home.
std::filesystem::path cacheDirectory(const Environment& environment);

std::filesystem::path preferencesFile(const Environment& environment);
std::filesystem::path historyFile(const Environment& environment);

// For what the program remembers of its own doings: lost, it costs the user nothing but a repetition.
std::filesystem::path stateFile(const Environment& environment);

// For the secrets where no secret service answers.
std::filesystem::path keychainFile(const Environment& environment);

}  // namespace ovrin
