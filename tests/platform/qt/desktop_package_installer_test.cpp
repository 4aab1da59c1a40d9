#include "platform/linux/qt/desktop_package_installer.h"

#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/running_task.h"
#include "fakes/temporary_directory.h"
#include "platform/linux/qt/qt_main_loop.h"
#include "qt_session.h"

namespace ovrin {
namespace {

struct DesktopPackageInstallerTest : testing::Test {
    DesktopPackageInstallerTest() {
        std::ofstream(package) << "package";
        qputenv("PATH", (folder.path() / "bin").c_str());  // without xdg-open, unless a test makes one
        std::filesystem::create_directory(folder.path() / "bin");
    }
    ~DesktopPackageInstallerTest() override { qputenv("PATH", path); }

    void makeOpener(const std::string& script) const {
        const auto file = folder.path() / "bin" / "xdg-open";
        std::ofstream(file) << "#!/bin/sh\n" << script;
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }

    // "installed", "opened", "shown", or the failure's words.
    std::string outcome() {
        std::optional<std::string> result;
        TaskGroup tasks(loop);
        tasks.start(install(result));
        waitUntil([&] { return result.has_value(); });
        return result.value_or("never");
    }
    Task<void> install(std::optional<std::string>& result) {
        try {
            const PackageHandOver handOver = co_await installer.install(package);
            const std::vector<std::string> names{"installed", "opened", "shown"};
            result = names.at(static_cast<std::size_t>(handOver));
        } catch (const Error& error) {
            result = error.errorDescription();
        }
    }

    QtSession& session = QtSession::ofProcess();
    const QByteArray path = qgetenv("PATH");
    TemporaryDirectory folder;
    const std::filesystem::path package = folder.path() / "ovrin.deb";
    QtMainLoop loop;
    DesktopPackageInstaller installer;
};

TEST_F(DesktopPackageInstallerTest, PackageKitIsGivenTheFileFirst) {
    std::optional<QDBusMessage> asked;
    QString error;
    const FakeService packageKit(
        "org.freedesktop.PackageKit", "/org/freedesktop/PackageKit", [&](const QDBusMessage& call) {
            asked = call;
            return error.isEmpty() ? call.createReply() : call.createErrorReply(error, "dependencies are missing");
        });
    EXPECT_EQ(outcome(), "installed");
    EXPECT_EQ(asked->interface(), "org.freedesktop.PackageKit.Modify2");
    EXPECT_EQ(asked->member(), "InstallPackageFiles");
    EXPECT_EQ(asked->signature(), "asssa{sv}");
    EXPECT_EQ(asked->arguments()[0].toStringList(), QStringList{QString::fromStdString(package)});
    error = "org.freedesktop.PackageKit.Modify2.Cancelled";
    EXPECT_EQ(outcome(), "已取消安装。");
    error = "org.freedesktop.PackageKit.Modify2.Failed";
    EXPECT_EQ(outcome(), "系统的安装程序没有完成安装：dependencies are missing");
    makeOpener("exit 0\n");
    error = "org.freedesktop.DBus.Error.UnknownInterface";
    EXPECT_EQ(outcome(), "opened") << "another service has the name";
}

TEST_F(DesktopPackageInstallerTest, ThePortalGetsTheOpenFileAndAnswersLater) {
    uint response = 0;
    QByteArray content;
    FakeService* self = nullptr;
    FakeService portal(
        "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", [&](const QDBusMessage& call) {
            const auto descriptor = qdbus_cast<QDBusUnixFileDescriptor>(call.arguments()[1]);
            QFile file;
            if (file.open(descriptor.fileDescriptor(), QIODevice::ReadOnly)) content = file.readAll();
            const auto options = qdbus_cast<QVariantMap>(call.arguments()[2]);
            const QString handle = "/org/freedesktop/portal/desktop/request/" +
                                   call.service().mid(1).replace('.', '_') + "/" + options["handle_token"].toString();
            QDBusMessage signal = QDBusMessage::createSignal(handle, "org.freedesktop.portal.Request", "Response");
            signal << response << QVariantMap();
            self->connection().send(signal);  // even before the reply
            return call.createReply(QVariant::fromValue(QDBusObjectPath(handle)));
        });
    self = &portal;
    EXPECT_EQ(outcome(), "opened");
    EXPECT_EQ(content, "package");
    response = 1;
    EXPECT_EQ(outcome(), "已取消安装。");
    response = 2;
    EXPECT_EQ(outcome(), "找不到可以打开安装包的程序。安装包保存在 " + package.string());
    makeOpener("exit 0\n");
    EXPECT_EQ(outcome(), "opened");
}

TEST_F(DesktopPackageInstallerTest, WhereNothingOpensPackagesTheFolderIsShown) {
    makeOpener("case \"$1\" in *.deb) exit 3;; esac\n");
    EXPECT_EQ(outcome(), "shown");
    QStringList shown;
    const FakeService manager("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                              [&](const QDBusMessage& call) {
                                  shown = call.arguments()[0].toStringList();
                                  return call.createReply();
                              });
    EXPECT_EQ(outcome(), "shown");
    EXPECT_EQ(shown, QStringList{QString::fromStdString("file://" + package.string())});
}

}  // namespace
}  // namespace ovrin
