// The typed values behind the preferences: one JSON object in one file, read at the moment it is needed. Several
// processes may share it: a change takes a lock, reads the file anew and replaces it whole, so that only the changed
// keys change. Unknown keys are kept. Any thread; reading costs a look at the file's time stamp.
#pragma once

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

    // Reading never fails. A value of another type is converted where that makes sense ("true" and 1 are true, 7 is
    // "7", "42" is 42); one that cannot be counts as absent.
    std::optional<std::string> string(std::string_view key) const;
    bool boolean(std::string_view key) const;          // false when absent
    std::int64_t integer(std::string_view key) const;  // 0 when absent
    bool contains(std::string_view key) const;         // whatever its type

    // On the disk when they return. Throw files::FileError; the store is then unchanged.
    void setString(std::string_view key, std::string_view value);
    void setBoolean(std::string_view key, bool value);
    void setInteger(std::string_view key, std::int64_t value);
    void remove(const std::vector<std::string_view>& keys);

private:
    struct Content;

    std::shared_ptr<Content> read() const;
    std::shared_ptr<const Content> content() const;
    void change(const std::function<void(json::Value& values)>& edit);

    std::filesystem::path file_;
    mutable std::mutex lock_;  // guards the two below
    mutable files::Stamp stamp_;
    mutable std::shared_ptr<const Content> content_;  // what the file held when the stamp was taken
};

}  // namespace ovrin
