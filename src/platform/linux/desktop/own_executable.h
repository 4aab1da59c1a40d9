// The file that this process runs.
#pragma once

#include <filesystem>

namespace ovrin {

// The path of the file, also once a newer file has taken its place, as after an update. Empty when the system does not
// tell.
std::filesystem::path ownExecutable();

}  // namespace ovrin
