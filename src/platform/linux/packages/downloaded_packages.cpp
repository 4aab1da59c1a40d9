#include "platform/linux/packages/downloaded_packages.h"

#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "platform/linux/packages/ed25519.h"
#include "platform/linux/packages/program_output.h"

namespace ovrin {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = "ovrin-";
constexpr std::string_view suffix = ".deb";  // by which programs know what it is

struct Identity {
    dev_t device;
    ino_t inode;
    bool operator==(const Identity&) const = default;
};

Identity identity(const struct stat& status) {
    return {.device = status.st_dev, .inode = status.st_ino};
}

// The content of a file without a copy of it: Ed25519 is only verified over all bytes at once.
class Mapping {
public:
    Mapping(int descriptor, std::size_t size, const fs::path& path) : size_(size) {
        if (size == 0) return;
        address_ = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (address_ == MAP_FAILED) throw files::FileError(path, errno);
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    ~Mapping() {
        if (size_ > 0) ::munmap(address_, size_);
    }

    std::string_view bytes() const { return {static_cast<const char*>(address_), size_}; }

private:
    void* address_ = nullptr;
    std::size_t size_;
};

// dpkg-deb prints "Name: value" lines, those of further lines indented.
std::map<std::string, std::string, std::less<>> fields(std::string_view output) {
    std::map<std::string, std::string, std::less<>> result;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        output.remove_prefix(std::min(output.size(), line.size() + 1));
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || line.starts_with(' ')) continue;
        result[std::string(line.substr(0, colon))] = std::string(text::trimmed(line.substr(colon + 1)));
    }
    return result;
}

// The user knows nothing of the file; its path says where the disk is meant.
[[noreturn]] void failToWrite(const fs::path& path, int reason) {
    if (reason == ENOSPC || reason == EDQUOT) throw Error("磁盘空间不足，无法保存安装包。");
    throw Error("无法保存安装包：" + files::FileError(path, reason).errorDescription());
}

class DownloadedPackage final : public UpdatePackage {
public:
    explicit DownloadedPackage(const fs::path& folder)
        : path_(folder / (std::string(prefix) + "XXXXXX" + std::string(suffix))) {
        std::string name = path_.string();
        descriptor_ = ::mkostemps(name.data(), static_cast<int>(suffix.size()), O_CLOEXEC);  // mode 0600
        if (descriptor_ < 0) failToWrite(folder, errno);
        path_ = name;
        ::flock(descriptor_, LOCK_EX | LOCK_NB);  // nobody else knows the file
    }
    DownloadedPackage(const DownloadedPackage&) = delete;
    DownloadedPackage& operator=(const DownloadedPackage&) = delete;
    ~DownloadedPackage() override {
        if (!isKept_) ::unlink(path_.c_str());
        ::close(descriptor_);
    }

    void append(std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) failToWrite(path_, errno);
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    bool isSigned(const std::string& signature, const std::string& publicKey) const override {
        const Mapping content(descriptor_, static_cast<std::size_t>(status().st_size), path_);
        return isSignedByEd25519(content.bytes(), signature, publicKey);
    }

    PackageControl control() const override {
        const std::string handed = "/proc/self/fd/" + std::to_string(handedDescriptor);
        const auto output =
            programOutput({"dpkg-deb", "--field", handed, "Package", "Version", "Architecture"}, descriptor_);
        if (!output) throw Error("下载的文件不是有效的 Debian 软件包。");
        auto found = fields(*output);
        return {.package = std::move(found["Package"]),
                .version = std::move(found["Version"]),
                .architecture = std::move(found["Architecture"])};
    }

    fs::path path() const override {
        struct stat named {};
        if (::lstat(path_.c_str(), &named) < 0) throw files::FileError(path_, errno);
        if (identity(named) != identity(status())) throw Error("下载的安装包已被替换，已拒绝安装。");
        return path_;
    }

    void keep() override { isKept_ = true; }

private:
    struct stat status() const {
        struct stat result {};
        if (::fstat(descriptor_, &result) < 0) throw files::FileError(path_, errno);
        return result;
    }

    fs::path path_;
    int descriptor_ = -1;
    bool isKept_ = false;
};

// One that its process still uses is locked.
void removeUnlessUsed(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) ::unlink(path.c_str());
    ::close(descriptor);
}

bool isDownload(const fs::path& path) {
    const std::string name = path.filename().string();
    return name.starts_with(prefix) && name.ends_with(suffix);
}

}  // namespace

DownloadedPackages::DownloadedPackages(fs::path folder) : folder_(std::move(folder)) {}

std::unique_ptr<UpdatePackage> DownloadedPackages::make() {
    try {
        files::makePrivateDirectory(folder_);
    } catch (const files::FileError& error) {
        failToWrite(folder_, error.code());
    }
    return std::make_unique<DownloadedPackage>(folder_);
}

void DownloadedPackages::removeLeftovers() {
    std::error_code ended;
    for (fs::directory_iterator entry(folder_, ended), end; !ended && entry != end; entry.increment(ended)) {
        if (isDownload(entry->path())) removeUnlessUsed(entry->path());
    }
}

}  // namespace ovrin
