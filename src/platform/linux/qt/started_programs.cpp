#include "platform/linux/qt/started_programs.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QString>
#include <QUrl>

#include "platform/linux/qt/wayland_activation.h"
#include "platform/linux/qt/window_system.h"

namespace ovrin {

QString freshActivationToken() {
    QWindow* const window = QGuiApplication::focusWindow();
    return window == nullptr ? QString() : QString::fromStdString(wayland::requestActivationToken(*window));
}

QProcessEnvironment environmentOfStartedProgram() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : ownToolkitVariables()) environment.remove(name);
    const QString token = freshActivationToken();
    if (!token.isEmpty()) environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), token);
    return environment;
}

void openURL(const QUrl& url) {
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({url.toString(QUrl::FullyEncoded)});
    opener.setProcessEnvironment(environmentOfStartedProgram());
    if (!opener.startDetached()) QDesktopServices::openUrl(url);
}

}  // namespace ovrin
