// The keys of the state file: what the program remembers of its own doings between two runs.
#pragma once

#include <string_view>

namespace ovrin::stateKey {

inline constexpr std::string_view lastUpdateCheck = "lastUpdateCheck";  // text: the moment, as iso8601Text() writes it
inline constexpr std::string_view skippedUpdate = "skippedUpdate";      // text: the version of the package
inline constexpr std::string_view announcedRefusedShortcuts = "announcedRefusedShortcuts";  // text: the set told last

}  // namespace ovrin::stateKey
