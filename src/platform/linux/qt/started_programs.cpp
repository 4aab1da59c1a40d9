#include "platform/linux/qt/started_programs.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QString>
#include <QUrl>

#include "platform/linux/qt/wayland_activation.h"

namespace ovrin {

QString freshActivationToken() {
    QWindow* const window = QGuiApplication::focusWindow();
    return window == nullptr ? QString() : QString::fromStdString(wayland::requestActivationToken(*window));
}

QProcessEnvironment environmentOfStartedProgram() {
    auto environment = QProcessEnvironment::systemEnvironment();
    const QString token = freshActivationToken();
    if (!token.isEmpty()) environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), token);
    return environment;
}

void openURL(const QUrl& url) {
    const QProcessEnvironment environment = environmentOfStartedProgram();
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({url.toString(QUrl::FullyEncoded)});
    opener.setProcessEnvironment(environment);
    const bool hasToken = environment.contains(QStringLiteral("XDG_ACTIVATION_TOKEN"));
    if (!hasToken || !opener.startDetached()) QDesktopServices::openUrl(url);
}

}  // namespace ovrin
