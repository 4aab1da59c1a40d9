#include "platform/linux/qt/desktop_package_installer.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "base/async_stream.h"
#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/qt/portal_request.h"
#include "platform/linux/qt/started_programs.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// As long as the user takes to read, to type the password and to wait for the installation.
constexpr int unlimited = std::numeric_limits<int>::max();
constexpr int patience = 25'000;  // milliseconds; for what a service answers by itself, starting included
// xdg-open fails at once where it fails; on some desktops it goes on for as long as the program that it has found.
constexpr auto patienceWithFailures = 3s;

bool hasSessionBus() {
    return sessionBus(Environment::ofProcess()) != SessionBus::none;
}

Task<QDBusMessage> answer(QDBusMessage call, int timeout) {
    auto [reply, writer] = makeStream<QDBusMessage>();
    auto* const watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call, timeout));
    const auto tell = std::make_shared<StreamWriter<QDBusMessage>>(std::move(writer));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [watcher, tell] {
        tell->push(watcher->reply());
        watcher->deleteLater();
    });
    std::optional<QDBusMessage> message = co_await reply.next();
    co_return std::move(*message);
}

bool isError(const QDBusMessage& message) {
    return message.type() == QDBusMessage::ErrorMessage;
}

// The service or its interface is not there, or could not be started.
bool isAbsent(const QDBusMessage& error) {
    const QString name = error.errorName();
    if (name.startsWith(QLatin1String("org.freedesktop.DBus.Error.Spawn"))) return true;
    switch (QDBusError(error).type()) {
        case QDBusError::ServiceUnknown:
        case QDBusError::UnknownMethod:
        case QDBusError::UnknownObject:
        case QDBusError::UnknownInterface:
        case QDBusError::NotSupported:
        case QDBusError::Disconnected:
            return true;
        default:
            return name == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
    }
}

Error declined() {
    return Error("已取消安装。");
}

// Whether PackageKit has installed it; false where there is no PackageKit. Throws when it does not install.
Task<bool> installByPackageKit(QString path) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.PackageKit"), QStringLiteral("/org/freedesktop/PackageKit"),
        QStringLiteral("org.freedesktop.PackageKit.Modify2"), QStringLiteral("InstallPackageFiles"));
    // The outcome shows in our own window.
    call << QStringList{path} << QStringLiteral("hide-finished") << QString::fromLatin1(applicationId) << QVariantMap();
    const QDBusMessage reply = co_await answer(call, unlimited);
    if (!isError(reply)) co_return true;
    if (isAbsent(reply)) co_return false;
    if (reply.errorName().endsWith(QLatin1String(".Cancelled"))) throw declined();
    throw Error("系统的安装程序没有完成安装：" + reply.errorMessage().toStdString());
}

// Whether the portal has opened it with a program.
Task<bool> openByPortal(QString path) {
    const int file = ::open(path.toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) co_return false;
    const QDBusUnixFileDescriptor descriptor(file);  // makes a copy of its own
    ::close(file);
    PortalRequest request(QDBusConnection::sessionBus());
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenFile"));
    QVariantMap options{{QStringLiteral("handle_token"), request.token()}};
    const QString token = freshActivationToken();
    if (!token.isEmpty()) options.insert(QStringLiteral("activation_token"), token);
    call << QString() << QVariant::fromValue(descriptor) << options;
    const QDBusMessage reply = co_await answer(call, patience);
    if (isError(reply)) co_return false;
    const std::optional<PortalRequest::Response> response = co_await request.response().next();
    if (response == PortalRequest::Response::cancelled) throw declined();
    co_return response == PortalRequest::Response::success;
}

// Whether xdg-open knows a program for it. The process is never killed: the program that it has found may be its child.
Task<bool> openByDefaultProgram(QString path) {
    auto [ending, writer] = makeStream<bool>();
    auto* const program = new QProcess;
    const auto tell = std::make_shared<StreamWriter<bool>>(std::move(writer));
    QObject::connect(program, &QProcess::finished, [program, tell](int status, QProcess::ExitStatus kind) {
        tell->push(kind == QProcess::NormalExit && status == 0);
        program->deleteLater();
    });
    QObject::connect(program, &QProcess::errorOccurred, [program, tell](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        tell->push(false);
        program->deleteLater();
    });
    QTimer::singleShot(patienceWithFailures, program, [tell] { tell->push(true); });
    program->setStandardOutputFile(QProcess::nullDevice());
    program->setStandardErrorFile(QProcess::nullDevice());
    program->setProcessEnvironment(environmentOfStartedProgram());
    program->start(QStringLiteral("xdg-open"), {path});
    const std::optional<bool> isOpened = co_await ending.next();
    co_return isOpened.value_or(false);
}

// Whether a file manager shows where it lies.
Task<bool> showInFolder(QString path) {
    if (hasSessionBus()) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(path).toString()} << freshActivationToken();
        const QDBusMessage reply = co_await answer(call, patience);
        if (!isError(reply)) co_return true;
    }
    const bool isOpened = co_await openByDefaultProgram(path.left(path.lastIndexOf(QLatin1Char('/'))));
    co_return isOpened;
}

}  // namespace

Task<PackageHandOver> DesktopPackageInstaller::install(std::filesystem::path package) {
    const QString path = QString::fromStdString(package.string());
    if (hasSessionBus()) {
        const bool isInstalled = co_await installByPackageKit(path);
        if (isInstalled) co_return PackageHandOver::installed;
        const bool isOpened = co_await openByPortal(path);
        if (isOpened) co_return PackageHandOver::opened;
    }
    const bool isOpened = co_await openByDefaultProgram(path);
    if (isOpened) co_return PackageHandOver::opened;
    const bool isShown = co_await showInFolder(path);
    if (isShown) co_return PackageHandOver::folderShown;
    throw Error("找不到可以打开安装包的程序。安装包保存在 " + package.string());
}

void DesktopPackageInstaller::openPage(const std::string& url) {
    openURL(QUrl(QString::fromStdString(url)));
}

}  // namespace ovrin
