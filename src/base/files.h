// Whole files, read with a bound and replaced in one step, and the locks that keep processes out of each other's way.
// Failures are FileError with the file and the system's reason. Blocking; any thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "base/error.h"

namespace ovrin::files {

// Its description is the Chinese sentence that windows show.
class FileError : public Error {
public:
    // code: an errno value.
    FileError(const std::filesystem::path& path, int code);

    int code() const noexcept { return code_; }

    // For the command line: the path and the system's own words, as other commands say them.
    const std::string& systemDescription() const noexcept { return systemDescription_; }

private:
    int code_;
    std::string systemDescription_;
};

// What an errno value means, in Chinese and without a full stop.
std::string reasonOf(int code);

// Who may read a file (and, where it says so, a folder) that the program makes. Only the user writes.
enum class Access : mode_t { onlyUser = 0600, everyone = 0644 };

// The whole file. One that is longer than the bound fails with EFBIG without being read to its end.
std::string readFile(const std::filesystem::path& path, std::size_t maximumBytes);

// Replaces the content of the file, or makes it; a symbolic link is followed to the file it names. Whatever happens
// meanwhile (a kill, a full disk, a power cut), the file afterwards holds either all of the old bytes or all of the
// new ones, which are on the disk when this returns. The new file has its mode from the first byte. Writers of one
// file take turns by a FileLock; a failure changes and leaves nothing.
void replaceFile(const std::filesystem::path& path, std::string_view bytes, Access access);

// Gives the file a second name beside it, path.unreadable (or .unreadable.1 and so on: no earlier one is touched), so
// that replacing it loses nothing. Returns the new name; none when there is no such file.
std::optional<std::filesystem::path> keepAside(const std::filesystem::path& path);

// Deletes what keepAside() has kept of the file.
void removeKeptAside(const std::filesystem::path& path);

// Makes the folder and those above it that are missing, open to the user alone. One that exists stays as it is.
void makeDirectories(const std::filesystem::path& path);

// The same for a folder that is the program's own: one that exists is closed to others, and one that belongs to
// somebody else is refused.
void makePrivateDirectory(const std::filesystem::path& path);

// What a file looked like at one moment, to find out cheaply whether it was changed since.
class Stamp {
public:
    // That of a missing file when there is none (or it cannot be looked at).
    static Stamp of(const std::filesystem::path& path);

    // That of a file which this process has just replaced and still holds the lock of. Whoever changes it next has to
    // replace it too, and a replacement is another file: it cannot be mistaken for this one.
    static Stamp ofReplaced(const std::filesystem::path& path);

    bool isMissing() const { return inode_ == 0; }

    // Whether the file is still the one of this stamp. False too when it had only just been written when the stamp was
    // taken: the clock of the file system ticks too slowly to show a second change at once after the first.
    bool stillHolds(const std::filesystem::path& path) const;

    friend bool operator==(const Stamp&, const Stamp&) = default;

private:
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
    std::int64_t size_ = 0;
    std::int64_t modified_ = 0;  // nanoseconds
    std::int64_t changed_ = 0;   // nanoseconds
    bool isSettled_ = true;
};

// The right to change a file, held by one thread of one process at a time for as long as the object lives. It stands
// in a hidden file beside the other (".NAME.lock"), which stays. A process that dies gives its locks back. Where the
// file system knows no locks everybody has the right at once.
class FileLock {
public:
    static constexpr std::chrono::milliseconds defaultPatience{2000};

    // Waits for the present holder; fails with EWOULDBLOCK when its patience is over.
    explicit FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience = defaultPatience);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int descriptor_;
};

}  // namespace ovrin::files
