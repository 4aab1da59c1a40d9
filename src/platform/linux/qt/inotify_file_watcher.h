// Watches files through their folders with inotify, in the application's event loop.
#pragma once

#include "platform/file_watcher.h"

namespace ovrin {

class InotifyFileWatcher final : public FileWatcher {
public:
    // A symbolic link is followed to the file that it names at the time of the call.
    std::unique_ptr<FileWatch> watch(const std::filesystem::path& file, std::function<void()> changed) override;
};

}  // namespace ovrin
