// Where the program keeps its files for the user. The home is $HOME, else the one in the password database.
#pragma once

#include <filesystem>

#include "base/environment.h"

namespace ovrin {

// That of all programs: $XDG_CONFIG_HOME, else ~/.config. Without a home a folder that does not exist, so that nobody
// else's preferences are read.
std::filesystem::path userConfigurationDirectory(const Environment& environment);

// Ovrin in the folder above.
std::filesystem::path configurationDirectory(const Environment& environment);

// $XDG_DATA_HOME/Ovrin, else ~/.local/share/Ovrin; without a home the private temporary directory, as the next two.
std::filesystem::path applicationSupportDirectory(const Environment& environment);

// $XDG_STATE_HOME/Ovrin, else ~/.local/state/Ovrin.
std::filesystem::path stateDirectory(const Environment& environment);

// $XDG_CACHE_HOME/Ovrin, else ~/.cache/Ovrin.
std::filesystem::path cacheDirectory(const Environment& environment);

// Makes the folder Ovrin in the temporary directory, open to the user alone. Where somebody else has put something in
// its place, a folder that does not exist. The only one here to touch the disk.
std::filesystem::path privateTemporaryDirectory(const Environment& environment);

std::filesystem::path preferencesFile(const Environment& environment);
std::filesystem::path historyFile(const Environment& environment);

// For what the program remembers of its own doings: lost, it costs the user nothing but a repetition.
std::filesystem::path stateFile(const Environment& environment);

// For the secrets where no secret service answers.
std::filesystem::path keychainFile(const Environment& environment);

}  // namespace ovrin
