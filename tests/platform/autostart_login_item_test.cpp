#include "platform/linux/desktop/autostart_login_item.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/files.h"
#include "fakes/temporary_directory.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class AutostartLoginItemTest : public ::testing::Test {
protected:
    AutostartLoginItemTest() { addProgram(program); }

    static void addProgram(const fs::path& path) {
        write(path, "");
        fs::permissions(path, fs::perms::owner_all);
    }
    static void write(const fs::path& path, std::string_view text) {
        files::makeDirectories(path.parent_path());
        files::replaceFile(path, text, files::Access::onlyUser);
    }

    AutostartLoginItem itemOf(const fs::path& executable) const {
        return {Environment({{"HOME", (root.path() / "home").string()},
                             {"XDG_CONFIG_DIRS",
                              "relative:" + (root.path() / "none").string() + ":" + (root.path() / "xdg").string()},
                             {"PATH", "/nowhere:" + (root.path() / "bin").string()}}),
                executable};
    }
    std::string entry() const { return files::readFile(own, 10'000); }

    TemporaryDirectory root;
    const fs::path program = root.path() / "bin" / "ovrin";
    const fs::path own = root.path() / "home/.config/autostart/com.quel.ovrin.desktop";
    const fs::path shared = root.path() / "xdg/autostart/com.quel.ovrin.desktop";
    AutostartLoginItem item = itemOf(program);
};

TEST_F(AutostartLoginItemTest, StartsTheInstalledProgramByNameAndAnyOtherByItsQuotedPath) {
    EXPECT_FALSE(item.isEnabled());
    item.registerItem();
    EXPECT_TRUE(item.isEnabled());
    EXPECT_THAT(entry(), HasSubstr("\nExec=ovrin --autostart\n"));

    const fs::path elsewhere = root.path() / "a $b\\ 100%" / "ovrin";
    addProgram(elsewhere);
    AutostartLoginItem other = itemOf(elsewhere);
    other.registerItem();
    // The file's own escapes come on top of those within the quotes.
    EXPECT_THAT(entry(), HasSubstr("/a \\\\$b\\\\\\\\ 100%%/ovrin\" --autostart\n"));
    EXPECT_TRUE(other.isEnabled());
    fs::remove(elsewhere);
    EXPECT_FALSE(other.isEnabled()) << "nothing would be started";

    item.unregisterItem();
    EXPECT_FALSE(fs::exists(own));
}

TEST_F(AutostartLoginItemTest, HonoursEveryWayToSwitchAnEntryOffAndKeepsTheRestOfIt) {
    write(own, "# mine\n[Desktop Entry]\nType=Application\nName=Mine\nExec=ovrin\nOnlyShowIn=XFCE;\n");
    EXPECT_TRUE(item.isEnabled());
    for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        write(own, entry() + off);
        EXPECT_FALSE(item.isEnabled()) << off;
        item.registerItem();
        EXPECT_TRUE(item.isEnabled());
    }
    EXPECT_THAT(entry(), HasSubstr("# mine"));
    EXPECT_THAT(entry(), HasSubstr("Name=Mine"));
    EXPECT_THAT(entry(), HasSubstr("OnlyShowIn=XFCE;"));

    write(own, "damaged");
    EXPECT_FALSE(item.isEnabled());
    item.registerItem();
    EXPECT_TRUE(item.isEnabled());
    EXPECT_TRUE(fs::exists(own.string() + ".unreadable"));
}

TEST_F(AutostartLoginItemTest, ADistributorsEntryIsShadowed) {
    write(shared, "[Desktop Entry]\nType=Application\nName=Ovrin\nExec=ovrin --autostart\n");
    EXPECT_TRUE(item.isEnabled());
    item.unregisterItem();
    EXPECT_FALSE(item.isEnabled());
    EXPECT_TRUE(fs::exists(shared));
    item.registerItem();
    EXPECT_TRUE(item.isEnabled());
    EXPECT_THAT(entry(), Not(HasSubstr("Hidden")));
}

TEST_F(AutostartLoginItemTest, AFailureIsASentenceAndChangesNothing) {
    write(own.parent_path(), "a file");
    try {
        item.registerItem();
        FAIL() << "the folder is a file";
    } catch (const Error& error) {
        EXPECT_THAT(error.errorDescription(), StartsWith("无法更改登录时启动："));
    }
    EXPECT_EQ(files::readFile(own.parent_path(), 10), "a file");
    EXPECT_FALSE(item.isEnabled());
}

}  // namespace
}  // namespace ovrin
