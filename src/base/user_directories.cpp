#include "base/user_directories.h"

#include <array>
#include <optional>
#include <string_view>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/files.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view ownName = "Ovrin";
// The home of system users who have none; it never exists.
constexpr std::string_view nowhere = "/nonexistent";

// Relative paths in these variables count as unset, as the base directory specification demands.
std::optional<fs::path> absolutePath(const Environment& environment, std::string_view variable) {
    const auto value = environment.value(variable);
    if (!value || !fs::path(*value).is_absolute()) return std::nullopt;
    return fs::path(*value);
}

std::optional<fs::path> homeInPasswordDatabase() {
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return std::nullopt;
    const fs::path home = found->pw_dir;
    if (!home.is_absolute() || home == nowhere) return std::nullopt;
    return home;
}

std::optional<fs::path> baseDirectory(const Environment& environment, std::string_view variable,
                                      std::string_view belowHome) {
    if (auto base = absolutePath(environment, variable)) return base;
    if (const auto home = absolutePath(environment, "HOME")) return *home / belowHome;
    if (const auto home = homeInPasswordDatabase()) return *home / belowHome;
    return std::nullopt;
}

fs::path ownDirectory(const Environment& environment, std::string_view variable, std::string_view belowHome) {
    if (const auto base = baseDirectory(environment, variable, belowHome)) return *base / ownName;
    return privateTemporaryDirectory(environment);
}

// Whether the folder itself, not what a link of somebody else leads to, is the user's and closed to others. Where
// others cannot rename it, as in /tmp, it stays that way.
bool isPrivateFolder(const fs::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

}  // namespace

fs::path userConfigurationDirectory(const Environment& environment) {
    return baseDirectory(environment, "XDG_CONFIG_HOME", ".config").value_or(nowhere);
}

fs::path configurationDirectory(const Environment& environment) {
    return userConfigurationDirectory(environment) / ownName;
}

fs::path applicationSupportDirectory(const Environment& environment) {
    return ownDirectory(environment, "XDG_DATA_HOME", ".local/share");
}

fs::path stateDirectory(const Environment& environment) {
    return ownDirectory(environment, "XDG_STATE_HOME", ".local/state");
}

fs::path cacheDirectory(const Environment& environment) {
    return ownDirectory(environment, "XDG_CACHE_HOME", ".cache");
}

fs::path privateTemporaryDirectory(const Environment& environment) {
    const fs::path path = absolutePath(environment, "TMPDIR").value_or("/tmp") / ownName;
    try {
        files::makePrivateDirectory(path);
    } catch (const files::FileError&) {
        return nowhere / fs::path(ownName);
    }
    return isPrivateFolder(path) ? path : nowhere / fs::path(ownName);
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
