#include "storage/user_directories.h"

#include <optional>
#include <string_view>

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view ownName = "Ovrin";

// Relative paths in these variables count as unset, as the base directory specification demands.
std::optional<fs::path> absolutePath(const Environment& environment, std::string_view variable) {
    const auto value = environment.value(variable);
    if (!value || !fs::path(*value).is_absolute()) return std::nullopt;
    return fs::path(*value);
}

fs::path baseDirectory(const Environment& environment, std::string_view variable, std::string_view belowHome) {
    if (const auto base = absolutePath(environment, variable)) return *base;
    if (const auto home = absolutePath(environment, "HOME")) return *home / belowHome;
    return absolutePath(environment, "TMPDIR").value_or("/tmp");
}

}  // namespace

fs::path userConfigurationDirectory(const Environment& environment) {
    return baseDirectory(environment, "XDG_CONFIG_HOME", ".config");
}

fs::path configurationDirectory(const Environment& environment) {
    return userConfigurationDirectory(environment) / ownName;
}

fs::path applicationSupportDirectory(const Environment& environment) {
    return baseDirectory(environment, "XDG_DATA_HOME", ".local/share") / ownName;
}

fs::path stateDirectory(const Environment& environment) {
    return baseDirectory(environment, "XDG_STATE_HOME", ".local/state") / ownName;
}

fs::path cacheDirectory(const Environment& environment) {
    return baseDirectory(environment, "XDG_CACHE_HOME", ".cache") / ownName;
}

fs::path preferencesFile(const Environment& environment) {
    return configurationDirectory(environment) / "preferences.json";
}

fs::path historyFile(const Environment& environment) {
    return applicationSupportDirectory(environment) / "history.json";
}

fs::path stateFile(const Environment& environment) {
    return stateDirectory(environment) / "state.json";
}

fs::path keychainFile(const Environment& environment) {
    return applicationSupportDirectory(environment) / "keychain.json";
}

}  // namespace ovrin
