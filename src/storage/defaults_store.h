// The typed values behind the preferences: one JSON object in one file, read at the moment it is needed. Several
// processes may share it: a change takes a lock, reads the file anew and replaces it whole, so that only the changed
// keys change. Unknown keys are kept. Any thread; reading costs a look at the file's time stamp.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "base/json.h"

namespace ovrin {

class DefaultsStore {
public:
    // A missing file is an empty store. So is a damaged one; it is kept aside (file.unreadable) by the first change.
    explicit DefaultsStore(std::filesystem::path file);
    ~DefaultsStore();
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;

    // For a program that must not wait: from now on a change waits no longer than the patience for the lock that
    // another process holds. It then counts here at once and is written later, and deferred is called, on the thread of
    // the change. Before anybody changes anything.
    void deferChanges(std::chrono::milliseconds patience, std::function<void()> deferred);

    // Writes what was deferred, over what other processes have written meanwhile; whether nothing is left.
    bool writeDeferred(std::chrono::milliseconds patience);

    // Reading never fails. A value of another type is converted where that makes sense ("true" and 1 are true, 7 is
    // "7", "42" is 42); one that cannot be counts as absent.
    std::optional<std::string> string(std::string_view key) const;
    bool boolean(std::string_view key) const;          // false when absent
    std::int64_t integer(std::string_view key) const;  // 0 when absent
    bool contains(std::string_view key) const;         // whatever its type

    // On the disk when they return, or deferred. Throw files::FileError; the store is then unchanged.
    void setString(std::string_view key, std::string_view value);
    void setBoolean(std::string_view key, bool value);
    void setInteger(std::string_view key, std::int64_t value);
    void remove(const std::vector<std::string_view>& keys);

private:
    struct Content;
    struct Changes;

    std::shared_ptr<Content> read() const;
    std::shared_ptr<const Content> content() const;
    void change(const Changes& changes);
    void write(const Changes& changes, std::chrono::milliseconds patience);

    std::filesystem::path file_;
    std::chrono::milliseconds patience_ = files::FileLock::defaultPatience;
    std::function<void()> deferred_;  // none: a change that cannot be written fails
    mutable std::mutex lock_;         // guards the three below
    std::unique_ptr<Changes> deferredChanges_;
    mutable files::Stamp stamp_;
    mutable std::shared_ptr<const Content>
        content_;  // with what was deferred, the file as it was when the stamp was taken
};

}  // namespace ovrin
