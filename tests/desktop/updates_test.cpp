// The updater from the notification to the desktop's installer, over a server with TLS, in a build of the program that
// knows the test's feed and key.
#include <mutex>

#include "base/files.h"
#include "desktop/bus_service.h"
#include "desktop/desktop_test.h"
#include "desktop/notification_recorder.h"
#include "desktop/practice_updates.h"

namespace ovrin {
namespace {

const WindowLook updater{.title = "软件更新 — Ovrin"};

// The desktop's installer, which is satisfied with every package.
class PackageKit {
public:
    explicit PackageKit(const std::string& busAddress)
        : service_(busAddress,
                   {.name = "org.freedesktop.PackageKit",
                    .path = "/org/freedesktop/PackageKit",
                    .description = R"(<node><interface name="org.freedesktop.PackageKit.Modify2">
                        <method name="InstallPackageFiles"><arg type="as" direction="in"/>
                        <arg type="s" direction="in"/><arg type="s" direction="in"/>
                        <arg type="a{sv}" direction="in"/></method></interface></node>)"},
                   [this](const std::string& /*method*/, GVariant* arguments) -> GVariant* {
                       const char* path = nullptr;
                       const Variant files(g_variant_get_child_value(arguments, 0));
                       g_variant_get_child(files.get(), 0, "&s", &path);
                       const std::lock_guard lock(mutex_);
                       package_ = files::readFile(path, std::size_t{1} << 20U);
                       return nullptr;
                   }) {}

    std::string package() const {
        const std::lock_guard lock(mutex_);
        return package_;
    }

private:
    mutable std::mutex mutex_;
    std::string package_;  // the content of the last one; guarded by the mutex
    BusService service_;   // the last member: it ends before what it uses
};

struct UpdatesTest : DesktopTest {
    void beginScene() { begin({.program = OVRIN_BINARY_DIR "/ovrin_updating", .environment = updates.environment()}); }

    const PracticeUpdates updates{"99.0-7", "**Bold** news\n<script>alert(1)</script>\n"};
};

TEST_F(UpdatesTest, AnAnnouncedUpdateIsVerifiedAndHandedToTheInstaller) {
    beginScene();
    const NotificationRecorder recorder(desktop->busAddress());
    const PackageKit packageKit(desktop->busAddress());
    SampleProgram& editor = openEditor();
    user->click(editor.window().area.center());
    waitFor("the announcement", [&] { return !recorder.notifications().empty(); });
    EXPECT_EQ(recorder.notifications()[0].title, "有新版本可用");
    EXPECT_TRUE(user->find(updater).empty());
    user->waitUntilActive(editor.window().id);

    recorder.activate(0);
    const DesktopWindow window = user->waitForWindow(updater);
    user->waitUntilActive(window.id);
    waitForWords("99.0（7）");
    waitForWords("<script>alert(1)</script>");
    clickOn("安装");
    waitForWords("重新启动 Ovrin 后生效");
    EXPECT_EQ(packageKit.package(), updates.package());
}

}  // namespace
}  // namespace ovrin
