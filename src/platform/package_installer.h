// Seam: the desktop's ways to install a package that lies on the disk.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "base/task.h"

namespace ovrin {

enum class PackageHandOver : std::uint8_t {
    installed,    // the desktop's installer has installed it
    opened,       // a program has it now and will ask the user
    folderShown,  // there is none: the user sees the folder that it lies in
};

// Main thread.
class PackageInstaller {
public:
    virtual ~PackageInstaller() = default;

    // Hands the package to the best of what the desktop has: its installer, else whatever opens packages, else the
    // folder is shown. Takes as long as the user takes to answer. Throws Error: when the user declines, when the
    // installation fails, and when nothing of all that can be had. Stopping the task does not stop an installation.
    virtual Task<PackageHandOver> install(std::filesystem::path package) = 0;

    // Shows a web page in the user's browser. Never fails: a desktop without a browser shows none.
    virtual void openPage(const std::string& url) = 0;
};

}  // namespace ovrin
