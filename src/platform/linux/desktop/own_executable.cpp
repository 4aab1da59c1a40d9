#include "platform/linux/desktop/own_executable.h"

#include <string>
#include <string_view>
#include <system_error>

namespace ovrin {

std::filesystem::path ownExecutable() {
    constexpr std::string_view replaced = " (deleted)";  // the kernel's mark on the name of a file that is gone
    std::error_code unknown;
    std::string path = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
    if (path.ends_with(replaced)) path.resize(path.size() - replaced.size());
    return path;
}

}  // namespace ovrin
