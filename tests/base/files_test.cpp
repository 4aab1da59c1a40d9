#include "base/files.h"

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fakes/temporary_directory.h"

namespace ovrin::files {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

constexpr std::size_t megabyte = 1U << 20U;

void writePlainly(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string contentOf(const fs::path& path) {
    return readFile(path, 64 * megabyte);
}

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory)) names.push_back(entry.path().filename());
    return names;
}

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777U;
}

int codeOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const FileError& error) {
        return error.code();
    }
    return 0;
}

TEST(FilesTest, ReadsWholeFilesUpToABound) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    const std::string bytes = std::string(300'000, 'x') + '\0' + "end";
    writePlainly(path, bytes);
    EXPECT_EQ(readFile(path, bytes.size()), bytes);
    EXPECT_EQ(codeOf([&] { readFile(path, bytes.size() - 1); }), EFBIG);
    EXPECT_EQ(codeOf([&] { readFile(directory.path() / "none", 10); }), ENOENT);
    EXPECT_EQ(codeOf([&] { readFile(directory.path(), 10); }), EISDIR);
    writePlainly(path, "");
    EXPECT_EQ(readFile(path, 0), "");
    EXPECT_NE(readFile("/proc/self/status", megabyte), "");  // has no size
}

TEST(FilesTest, AReplacementIsPrivateAndLeavesNothingElse) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    replaceFile(path, "one", Access::onlyUser);
    EXPECT_EQ(contentOf(path), "one");
    EXPECT_EQ(modeOf(path), 0600U);
    writePlainly(directory.path() / ".file.new", "left by a killed writer");
    replaceFile(path, "two", Access::onlyUser);
    EXPECT_EQ(contentOf(path), "two");
    EXPECT_THAT(namesIn(directory.path()), UnorderedElementsAre("file"));
}

TEST(FilesTest, AReplacementFollowsLinks) {
    const TemporaryDirectory directory;
    fs::create_directory(directory.path() / "real");
    fs::create_symlink("real/file", directory.path() / "link");
    fs::create_symlink("link", directory.path() / "second");
    replaceFile(directory.path() / "second", "made through a dangling link", Access::onlyUser);
    replaceFile(directory.path() / "second", "new", Access::onlyUser);
    EXPECT_EQ(contentOf(directory.path() / "real" / "file"), "new");
    EXPECT_TRUE(fs::is_symlink(directory.path() / "second"));
    fs::create_symlink("loop", directory.path() / "loop");
    EXPECT_EQ(codeOf([&] { replaceFile(directory.path() / "loop", "x", Access::onlyUser); }), ELOOP);
}

TEST(FilesTest, AFullDiskLeavesTheOldContent) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    replaceFile(path, "old", Access::onlyUser);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{100'000, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const int code = codeOf([&] { replaceFile(path, std::string(200'000, 'n'), Access::onlyUser); });
    ::setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(code, EFBIG);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(namesIn(directory.path()), UnorderedElementsAre("file"));
}

// Kills a process in the middle of writing, again and again: every time the file must be whole.
TEST(FilesTest, AKillAtAnyInstantLeavesAWholeFile) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    replaceFile(path, std::string(megabyte, 'a'), Access::onlyUser);
    for (int round = 0; round < 40; ++round) {
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
                replaceFile(path, std::string(megabyte, letter), Access::onlyUser);
                if (letter == 'b') (void)!::write(ready[1], "r", 1);
            }
        }
        char byte = 0;
        ASSERT_EQ(::read(ready[0], &byte, 1), 1);
        for (int spin = 0; spin < round * 20'000; ++spin) std::atomic_signal_fence(std::memory_order_seq_cst);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ready[0]);
        ::close(ready[1]);
        const std::string bytes = contentOf(path);
        ASSERT_EQ(bytes.size(), megabyte);
        ASSERT_EQ(bytes.find_first_not_of(bytes.front()), std::string::npos);
        ASSERT_EQ(modeOf(path), 0600U);
    }
    replaceFile(path, "last", Access::onlyUser);
    EXPECT_THAT(namesIn(directory.path()), UnorderedElementsAre("file"));
}

TEST(FilesTest, KeepingAsideNeverTouchesAnEarlierCopy) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    EXPECT_EQ(keepAside(path), std::nullopt);
    for (const char* content : {"first", "second", "third"}) {
        writePlainly(path, content);
        EXPECT_TRUE(keepAside(path));
        replaceFile(path, "good", Access::onlyUser);
    }
    EXPECT_EQ(contentOf(directory.path() / "file.unreadable"), "first");
    EXPECT_EQ(contentOf(directory.path() / "file.unreadable.1"), "second");
    EXPECT_EQ(contentOf(directory.path() / "file.unreadable.2"), "third");
    EXPECT_EQ(contentOf(path), "good");
}

TEST(FilesTest, PrivateDirectoriesAreClosedToOthers) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "a" / "b";
    makePrivateDirectory(path);
    EXPECT_EQ(modeOf(path), 0700U);
    EXPECT_EQ(modeOf(path.parent_path()), 0700U);
    fs::permissions(path, fs::perms(0755));
    makePrivateDirectory(path);
    EXPECT_EQ(modeOf(path), 0700U);
    writePlainly(path / "file", "");
    EXPECT_EQ(codeOf([&] { makePrivateDirectory(path / "file" / "c"); }), ENOTDIR);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(path.c_str(), 12345, 12345), 0);
        EXPECT_EQ(codeOf([&] { makePrivateDirectory(path); }), EPERM);
    }
}

TEST(FilesTest, AStampTellsWhetherTheFileChanged) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    const Stamp missing = Stamp::of(path);
    EXPECT_TRUE(missing.isMissing());
    EXPECT_TRUE(missing.stillHolds(path));
    replaceFile(path, "one", Access::onlyUser);
    EXPECT_FALSE(missing.stillHolds(path));
    // Just written: a second change of the same size within the clock's tick would look the same. A busy machine may be
    // slower than that now and then.
    bool isTooFresh = false;
    for (int i = 0; i < 50 && !isTooFresh; ++i) {
        replaceFile(path, "one", Access::onlyUser);
        isTooFresh = !Stamp::of(path).stillHolds(path);
    }
    EXPECT_TRUE(isTooFresh);
    const Stamp own = Stamp::ofReplaced(path);
    EXPECT_TRUE(own.stillHolds(path));
    replaceFile(path, "two", Access::onlyUser);
    EXPECT_FALSE(own.stillHolds(path));
}

TEST(FilesTest, ALockHasOneHolderAndEndsWithItsProcess) {
    const TemporaryDirectory directory;
    const fs::path path = directory.path() / "file";
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const FileLock lock(path);
        (void)!::write(ready[1], "r", 1);
        ::pause();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(codeOf([&] { const FileLock lock(path, std::chrono::milliseconds(0)); }), EWOULDBLOCK);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(codeOf([&] { const FileLock lock(path, std::chrono::milliseconds(0)); }), 0);

    // Atomic for the eyes of the thread sanitizer, which knows no file locks; the turn as a whole is not.
    std::atomic<int> counter = 0;
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 25; ++turn) {
                const FileLock lock(path, std::chrono::minutes(1));
                counter = counter.exchange(0) + 1;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(counter, 100);
}

TEST(FilesTest, ErrorsNameTheFileAndTheReasonInWindowsAndOnTheCommandLine) {
    const fs::path path = "/nowhere/at all";
    for (const std::function<void()>& action : {std::function<void()>([&] { readFile(path, 1); }),
                                                std::function<void()>([&] { const FileLock lock(path); })}) {
        try {
            action();
            FAIL();
        } catch (const FileError& error) {
            EXPECT_EQ(error.systemDescription(), "/nowhere/at all: No such file or directory");
            EXPECT_EQ(error.errorDescription(), "无法读写“at all”：文件不存在。");
        }
    }
}

}  // namespace
}  // namespace ovrin::files
