// Secrets in a file that only the user can read (mode 0600 in a folder with mode 0700), for a session in which no
// secret service answers. It also notes deletions, which a service has not heard of. Blocking; any thread; processes
// take turns. Changes throw files::FileError.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/json.h"
#include "platform/keychain.h"

namespace ovrin {

class KeychainFile {
public:
    struct Entry {
        enum class State { unknown, present, deleted, damaged };  // damaged: the file as a whole

        State state = State::unknown;
        std::string data = {};  // when present
    };

    // The folder of the file is the program's own.
    explicit KeychainFile(std::filesystem::path path);

    Entry entry(const KeychainItem& item) const;

    // The data is well-formed UTF-8. A damaged file is kept aside first.
    void set(const KeychainItem& item, std::string_view data);
    void setDeleted(const KeychainItem& item);

    // Deletes the copies of damaged files, which may hold any secret.
    void removeKeptAside() const { files::removeKeptAside(path_); }

    // Nothing is known of the item any more. A damaged file stays as it is.
    void forget(const KeychainItem& item);

private:
    void change(const std::function<void(json::Value& services)>& edit);

    std::filesystem::path path_;
};

}  // namespace ovrin
