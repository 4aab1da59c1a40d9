// A file system whose changes are told when the test says so.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/file_watcher.h"

namespace ovrin {

class FakeFileWatcher final : public FileWatcher {
public:
    int watches = 0;  // that live

    std::unique_ptr<FileWatch> watch(const std::filesystem::path& file, std::function<void()> changed) override {
        watched = file;
        changed_ = std::move(changed);
        return std::make_unique<Watch>(watches);
    }
    void tellOfChange() const { changed_(); }

    std::filesystem::path watched;

private:
    struct Watch final : FileWatch {
        explicit Watch(int& watches) : watches_(watches) { ++watches_; }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch() override { --watches_; }
        int& watches_;
    };

    std::function<void()> changed_;
};

}  // namespace ovrin
