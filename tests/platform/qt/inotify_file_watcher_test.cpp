#include "platform/linux/qt/inotify_file_watcher.h"

#include <fstream>

#include "base/files.h"
#include "qt_session.h"

namespace ovrin {
namespace {

TEST(InotifyFileWatcher, HearsOfEveryChangeOfTheFileAndOfNothingElse) {
    QtSession::ofProcess();
    const TemporaryDirectory directory;
    const auto file = directory.path() / "history.json";
    std::ofstream(file) << "there";
    std::filesystem::create_symlink(file, directory.path() / "link");
    InotifyFileWatcher watcher;
    int changes = 0;
    auto watch = watcher.watch(directory.path() / "link", [&] { ++changes; });
    const auto isHeard = [&] {
        const bool isSo = waitUntil([&] { return changes > 0; });
        changes = 0;
        return isSo;
    };

    std::ofstream(directory.path() / "other") << "x";
    files::replaceFile(file, "replaced", files::Access::onlyUser);
    EXPECT_TRUE(isHeard());
    std::ofstream(file, std::ios::app) << "written in place";
    EXPECT_TRUE(isHeard());
    std::filesystem::remove(file);
    EXPECT_TRUE(isHeard());

    // The other file is written before one that is heard of: had it been heard of, that would have come first.
    std::ofstream(directory.path() / "other") << "y";
    int heard = 0;
    watch = watcher.watch(file, [&] {
        ++heard;
        watch.reset();  // from inside
    });
    std::ofstream(directory.path() / "another") << "z";
    std::ofstream(file) << "again";
    EXPECT_TRUE(waitUntil([&] { return heard > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(watch, nullptr);
}

TEST(InotifyFileWatcher, WatchesNothingWhereThereIsNoFolder) {
    QtSession::ofProcess();
    const TemporaryDirectory directory;
    std::ofstream(directory.path() / "file") << "x";
    InotifyFileWatcher watcher;
    EXPECT_NE(watcher.watch(directory.path() / "file" / "history.json", [] {}), nullptr);
}

}  // namespace
}  // namespace ovrin
