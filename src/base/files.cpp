#include "base/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovrin::files {
namespace {

namespace fs = std::filesystem;

// An open file, closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        if (value_ >= 0) ::close(value_);
    }

    int get() const { return value_; }
    int release() { return std::exchange(value_, -1); }

private:
    int value_;
};

// Calls the function again for as long as a signal interrupts it.
template <typename Function>
auto uninterrupted(Function function) {
    decltype(function()) result;
    do {
        result = function();
    } while (result < 0 && errno == EINTR);
    return result;
}

Descriptor openFile(const fs::path& path, int flags) {
    const int descriptor = uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC); });
    if (descriptor < 0) throw FileError(path, errno);
    return Descriptor(descriptor);
}

// Where the links end. The last name need not exist.
fs::path withoutLinks(fs::path path) {
    constexpr int maximumLinks = 40;  // the kernel's own limit
    for (int followed = 0; followed < maximumLinks; ++followed) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error) return path;
        path = path.parent_path() / target;
    }
    throw FileError(path, ELOOP);
}

fs::path directoryOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// The file that will take the place of another. It has no name while it is written where the file system can do that,
// so that a kill leaves nothing behind; elsewhere it is written under the name it is put in place from.
class Successor {
public:
    Successor(const fs::path& target, mode_t mode)
        : target_(target),
          directory_(openFile(directoryOf(target), O_RDONLY | O_DIRECTORY)),
          name_("." + target.filename().string() + ".new"),
          file_(open(mode)) {}

    Successor(const Successor&) = delete;
    Successor& operator=(const Successor&) = delete;
    ~Successor() {
        if (isNamed_) ::unlinkat(directory_.get(), name_.c_str(), 0);
    }

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = uninterrupted([&] { return ::write(file_.get(), bytes.data(), bytes.size()); });
            if (written < 0) fail();
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        // Before the file gets its name: the name must never stand for less than the bytes.
        if (uninterrupted([&] { return ::fsync(file_.get()); }) < 0) fail();
    }

    void takePlace() {
        if (!isNamed_) giveName();
        const std::string target = target_.filename().string();
        if (::renameat(directory_.get(), name_.c_str(), directory_.get(), target.c_str()) < 0) fail();
        isNamed_ = false;
        // Some file systems cannot do this for a folder and need not.
        if (uninterrupted([&] { return ::fsync(directory_.get()); }) < 0 && errno != EINVAL) fail();
    }

private:
    [[noreturn]] void fail() const { throw FileError(target_, errno); }

    int open(mode_t mode) {
        const int anonymous =
            uninterrupted([&] { return ::openat(directory_.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode); });
        if (anonymous >= 0) return anonymous;
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOENT) fail();
        removeLeftover();
        const int named = uninterrupted(
            [&] { return ::openat(directory_.get(), name_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode); });
        if (named < 0) fail();
        isNamed_ = true;
        return named;
    }

    void giveName() {
        const std::string path = "/proc/self/fd/" + std::to_string(file_.get());
        removeLeftover();
        if (::linkat(AT_FDCWD, path.c_str(), directory_.get(), name_.c_str(), AT_SYMLINK_FOLLOW) < 0) fail();
        isNamed_ = true;
    }

    // Left by a writer that was killed between naming and renaming.
    void removeLeftover() const {
        if (::unlinkat(directory_.get(), name_.c_str(), 0) < 0 && errno != ENOENT) fail();
    }

    fs::path target_;
    Descriptor directory_;
    std::string name_;
    bool isNamed_ = false;
    Descriptor file_;
};

bool isSameFile(const fs::path& first, const fs::path& second) {
    std::error_code error;
    return fs::equivalent(first, second, error) && !error;
}

// Gives the file the new name (it may have it already) unless that is another's, which fails with EEXIST. Where there
// are no hard links the file moves.
bool addName(const fs::path& path, const fs::path& name) {
    if (::link(path.c_str(), name.c_str()) == 0) return true;
    if (errno == EEXIST) {
        if (isSameFile(path, name)) return true;
        errno = EEXIST;
        return false;
    }
    if (errno == ENOENT) return false;
    return ::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0;
}

std::int64_t nanoseconds(const timespec& time) {
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

}  // namespace

std::string reasonOf(int code) {
    switch (code) {
        case ENOSPC:
        case EDQUOT:
            return "磁盘空间不足";
        case EACCES:
        case EPERM:
            return "没有权限";
        case EROFS:
            return "文件系统是只读的";
        case EWOULDBLOCK:
            return "另一个程序正在使用它，请稍后重试";
        case EFBIG:
            return "文件过大";
        case ENOENT:
            return "文件不存在";
        case EISDIR:
        case ENOTDIR:
        case ELOOP:
            return "路径不是有效的文件";
        case EMFILE:
        case ENFILE:
            return "打开的文件过多";
        case EIO:
            return "磁盘读写出错";
        default:
            return "系统错误 " + std::to_string(code);
    }
}

FileError::FileError(const fs::path& path, int code)
    : Error("无法读写“" + path.filename().string() + "”：" + reasonOf(code) + "。"),
      code_(code),
      systemDescription_(
          path.string() + ": " +
          (code == EWOULDBLOCK ? "another program is using it" : std::generic_category().message(code))) {}

std::string readFile(const fs::path& path, std::size_t maximumBytes) {
    const Descriptor file = openFile(path, O_RDONLY);
    struct stat status {};
    if (::fstat(file.get(), &status) < 0) throw FileError(path, errno);
    constexpr std::size_t step = 64 * std::size_t{1024};
    std::string bytes;
    std::size_t length = 0;
    // The size is a hint only: pipes have none, and a file may grow.
    std::size_t capacity = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1;
    while (true) {
        if (length == bytes.size()) bytes.resize(std::min(std::max(capacity, length + step), maximumBytes + 1));
        const ssize_t received =
            uninterrupted([&] { return ::read(file.get(), bytes.data() + length, bytes.size() - length); });
        if (received < 0) throw FileError(path, errno);
        length += static_cast<std::size_t>(received);
        if (length > maximumBytes) throw FileError(path, EFBIG);
        if (received == 0) break;
    }
    bytes.resize(length);
    return bytes;
}

void replaceFile(const fs::path& path, std::string_view bytes, Access access) {
    Successor successor(withoutLinks(path), static_cast<mode_t>(access));
    successor.write(bytes);
    successor.takePlace();
}

std::optional<fs::path> keepAside(const fs::path& path) {
    const fs::path file = withoutLinks(path);
    for (int number = 0;; ++number) {
        fs::path name = file;
        name += number == 0 ? ".unreadable" : ".unreadable." + std::to_string(number);
        if (addName(file, name)) return name;
        if (errno == ENOENT) return std::nullopt;
        if (errno != EEXIST) throw FileError(path, errno);
    }
}

void removeKeptAside(const fs::path& path) {
    const fs::path file = withoutLinks(path);
    const std::string name = file.filename().string() + ".unreadable";
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(directoryOf(file), failure)) {
        const std::string found = entry.path().filename().string();
        if (found != name && !found.starts_with(name + ".")) continue;
        if (::unlink(entry.path().c_str()) < 0 && errno != ENOENT) throw FileError(entry.path(), errno);
    }
}

void makeDirectories(const fs::path& path) {
    if (path.empty() || ::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return;
    if (errno != ENOENT) throw FileError(path, errno);
    makeDirectories(path.parent_path());
    if (::mkdir(path.c_str(), 0700) < 0 && errno != EEXIST) throw FileError(path, errno);
}

void makePrivateDirectory(const fs::path& path) {
    makeDirectories(path);
    const Descriptor directory = openFile(path, O_RDONLY | O_DIRECTORY);
    struct stat status {};
    if (::fstat(directory.get(), &status) < 0) throw FileError(path, errno);
    if (status.st_uid != ::geteuid()) throw FileError(path, EPERM);
    constexpr mode_t others = S_IRWXG | S_IRWXO;
    if ((status.st_mode & others) == 0) return;
    if (::fchmod(directory.get(), status.st_mode & 07777U & ~others) < 0) throw FileError(path, errno);
}

Stamp Stamp::of(const fs::path& path) {
    Stamp stamp;
    struct stat status {};
    if (::stat(path.c_str(), &status) < 0) return stamp;
    stamp.device_ = status.st_dev;
    stamp.inode_ = status.st_ino;
    stamp.size_ = status.st_size;
    stamp.modified_ = nanoseconds(status.st_mtim);
    stamp.changed_ = nanoseconds(status.st_ctim);

    constexpr std::int64_t clockTick = 20'000'000;  // nanoseconds; kernels tick every 1 to 10 milliseconds
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t age = nanoseconds(now) - stamp.changed_;
    stamp.isSettled_ = age < 0 || age > clockTick;
    return stamp;
}

Stamp Stamp::ofReplaced(const fs::path& path) {
    Stamp stamp = of(path);
    stamp.isSettled_ = true;
    return stamp;
}

bool Stamp::stillHolds(const fs::path& path) const {
    if (!isSettled_) return false;
    Stamp present = of(path);
    present.isSettled_ = isSettled_;
    return present == *this;
}

// Failures name the file that the lock is for, which is the one that the user knows.
FileLock::FileLock(const fs::path& path, std::chrono::milliseconds patience) {
    const fs::path lock = directoryOf(path) / ("." + path.filename().string() + ".lock");
    const auto open = [&] { return ::open(lock.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600); };
    Descriptor file(uninterrupted(open));
    if (file.get() < 0) throw FileError(path, errno);
    constexpr std::chrono::milliseconds pause{2};
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) < 0) {
        if (errno == ENOLCK || errno == EOPNOTSUPP) break;
        if (errno != EWOULDBLOCK) throw FileError(path, errno);
        if (std::chrono::steady_clock::now() >= deadline) throw FileError(path, EWOULDBLOCK);
        std::this_thread::sleep_for(pause);
    }
    descriptor_ = file.release();
}

FileLock::~FileLock() {
    ::close(descriptor_);
}

}  // namespace ovrin::files
