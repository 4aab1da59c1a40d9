// Seam: hears that a file was changed, by whatever program.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

namespace ovrin {

// Lives as long as its owner wants to hear of changes.
class FileWatch {
public:
    virtual ~FileWatch() = default;
};

// Main thread.
class FileWatcher {
public:
    virtual ~FileWatcher() = default;

    // changed is called from the event loop, after each change at the latest: when the file was written, made, replaced
    // or removed, once for changes that come together. It may destroy the watch. Nothing is woken while nothing changes
    // in the file's folder. A folder that is not there, or goes away later, is not waited for.
    virtual std::unique_ptr<FileWatch> watch(const std::filesystem::path& file, std::function<void()> changed) = 0;
};

}  // namespace ovrin
