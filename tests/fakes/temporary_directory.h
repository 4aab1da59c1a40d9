// A folder of the test's own, removed with everything in it at the end of its scope.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/error.h"

namespace ovrin {

class TemporaryDirectory {
public:
    TemporaryDirectory() : path_((std::filesystem::temp_directory_path() / "ovrin-test-XXXXXX").string()) {
        std::string name = path_.string();
        if (::mkdtemp(name.data()) == nullptr) throw Error("no temporary directory: " + name);
        path_ = name;
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace ovrin
