#include "storage/defaults_store.h"

#include <fstream>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/user_directories.h"
#include "fakes/temporary_directory.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

using ::testing::Optional;

class DefaultsStoreTest : public ::testing::Test {
protected:
    void write(std::string_view bytes) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    }
    std::string content(const std::filesystem::path& path) { return files::readFile(path, 1U << 20U); }
    static mode_t modeOf(const std::filesystem::path& path) {
        struct stat status {};
        ::stat(path.c_str(), &status);
        return status.st_mode & 07777U;
    }

    TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "config" / "Ovrin" / "preferences.json";
    DefaultsStore store{file};
};

TEST_F(DefaultsStoreTest, ValuesAreOnTheDiskAndPrivate) {
    store.setString("text", "译文");
    store.setBoolean("flag", true);
    store.setInteger("count", 1LL << 60);
    DefaultsStore second(file);
    EXPECT_THAT(second.string("text"), Optional(std::string("译文")));
    EXPECT_TRUE(second.boolean("flag"));
    EXPECT_EQ(second.integer("count"), 1LL << 60);
    second.remove({"text", "never there"});
    EXPECT_FALSE(store.contains("text"));
    EXPECT_TRUE(store.boolean("flag"));
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
}

TEST_F(DefaultsStoreTest, ValuesWrittenByHandAreConvertedWhereThatMakesSense) {
    write(R"({"a":"true","b":1,"c":"42","d":7.0,"e":false,"f":[1],"g":" 12 x","h":0.5,"i":null})");
    EXPECT_TRUE(store.boolean("a"));
    EXPECT_TRUE(store.boolean("b"));
    EXPECT_FALSE(store.boolean("f"));
    EXPECT_EQ(store.integer("c"), 42);
    EXPECT_EQ(store.integer("d"), 7);
    EXPECT_EQ(store.integer("g"), 0);
    EXPECT_EQ(store.integer("h"), 0);
    EXPECT_THAT(store.string("b"), Optional(std::string("1")));
    EXPECT_THAT(store.string("e"), Optional(std::string("false")));
    EXPECT_EQ(store.string("f"), std::nullopt);
    EXPECT_EQ(store.string("i"), std::nullopt);
}

TEST_F(DefaultsStoreTest, ChangesFromOutsideAreSeenAtOnceAndKept) {
    store.setString("mine", "1");
    EXPECT_EQ(store.string("theirs"), std::nullopt);
    write(R"({"theirs":"A","unknown":{"kept":[1,2]}})");
    EXPECT_THAT(store.string("theirs"), Optional(std::string("A")));
    write(R"({"theirs":"B","unknown":{"kept":[1,2]}})");  // the same size within the clock's tick
    EXPECT_THAT(store.string("theirs"), Optional(std::string("B")));
    store.setString("mine", "2");
    EXPECT_EQ(json::encoded(json::parseOrThrow(content(file))),
              R"({"mine":"2","theirs":"B","unknown":{"kept":[1,2]}})");
}

TEST_F(DefaultsStoreTest, ADamagedFileIsKeptAsideByTheFirstChange) {
    for (const std::string damaged : {R"({"ovrin.model": "half)", "[1,2]", "\"\xFF\""}) {
        write(damaged);
        EXPECT_EQ(store.string("ovrin.model"), std::nullopt);
        EXPECT_EQ(content(file), damaged);  // reading alone changes nothing
        store.setString("ovrin.model", "m");
        EXPECT_THAT(store.string("ovrin.model"), Optional(std::string("m")));
    }
    EXPECT_EQ(content(file.string() + ".unreadable"), R"({"ovrin.model": "half)");
    EXPECT_EQ(content(file.string() + ".unreadable.2"), "\"\xFF\"");
    store.setString("ovrin.model", "n");
    EXPECT_FALSE(std::filesystem::exists(file.string() + ".unreadable.3"));
}

TEST_F(DefaultsStoreTest, ProcessesAndThreadsThatWriteLoseNothingOfEachOther) {
    constexpr int writers = 3;
    constexpr int writes = 20;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        DefaultsStore own(file);
        for (int index = 0; index < writes; ++index) {
            own.setInteger("child." + std::to_string(writer) + "." + std::to_string(index), index + 1);
        }
        ::_exit(0);
    }
    {
        const std::jthread thread([&] {
            for (int index = 0; index < writes; ++index) store.setInteger("thread." + std::to_string(index), index + 1);
        });
        for (int index = 0; index < writes; ++index) store.setInteger("main." + std::to_string(index), index + 1);
    }
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int index = 0; index < writes; ++index) {
        const std::string suffix = "." + std::to_string(index);
        EXPECT_EQ(store.integer("main" + suffix), index + 1);
        EXPECT_EQ(store.integer("thread" + suffix), index + 1);
        for (int writer = 0; writer < writers; ++writer) {
            EXPECT_EQ(store.integer("child." + std::to_string(writer) + suffix), index + 1);
        }
    }
}

TEST_F(DefaultsStoreTest, AChangeThatCannotBeWrittenIsReported) {
    write("{}");
    std::filesystem::create_directory(file.parent_path() / ".preferences.json.lock");
    EXPECT_THROW(store.setString("ovrin.model", "m"), files::FileError);
    EXPECT_EQ(store.string("ovrin.model"), std::nullopt);
}

TEST(UserDirectoriesTest, FollowTheBaseDirectoryVariables) {
    const Environment xdg({{"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}, {"HOME", "/h"}});
    EXPECT_EQ(preferencesFile(xdg), "/c/Ovrin/preferences.json");
    EXPECT_EQ(historyFile(xdg), "/d/Ovrin/history.json");
    EXPECT_EQ(stateFile(Environment(Environment::Variables{{"XDG_STATE_HOME", "/s"}})), "/s/Ovrin/state.json");
    const Environment relative({{"XDG_CONFIG_HOME", "c"}, {"HOME", "/h"}});
    EXPECT_EQ(preferencesFile(relative), "/h/.config/Ovrin/preferences.json");
    EXPECT_EQ(historyFile(relative), "/h/.local/share/Ovrin/history.json");
    EXPECT_EQ(stateFile(relative), "/h/.local/state/Ovrin/state.json");
    EXPECT_EQ(historyFile(Environment()),
              std::filesystem::path(::getpwuid(::getuid())->pw_dir) / ".local/share/Ovrin/history.json");
}

TEST(UserDirectoriesTest, NothingOfOthersInTheTemporaryDirectoryIsTrusted) {
    const TemporaryDirectory directory;
    const std::filesystem::path own = directory.path() / "Ovrin";
    const Environment environment(Environment::Variables{{"TMPDIR", directory.path()}});
    EXPECT_EQ(privateTemporaryDirectory(environment), own);
    EXPECT_EQ(std::filesystem::status(own).permissions(), std::filesystem::perms::owner_all);
    std::filesystem::rename(own, directory.path() / "elsewhere");
    std::filesystem::create_symlink("elsewhere", own);
    EXPECT_EQ(privateTemporaryDirectory(environment), "/nonexistent/Ovrin");
}

}  // namespace
}  // namespace ovrin
