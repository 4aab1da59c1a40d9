#include "platform/linux/qt/lost_display.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace ovrin {

namespace {

// A handler of messages can be told nothing else.
QtMessageHandler previousHandler = nullptr;
LostDisplay::Acts actsOfProgram;

// What Qt 6.4 says right before it ends the program; with a server that is there but ends the connection it is the
// last.
bool isTheEndOfX11(const QString& message) {
    return message.startsWith(QLatin1String("The X11 connection broke"));
}
bool isTheEndOfWayland(const QString& message) {
    return message.startsWith(QLatin1String("The Wayland connection broke")) ||
           message.startsWith(QLatin1String("The Wayland connection experienced a fatal error"));
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isWayland = isTheEndOfWayland(message);
    if (!isWayland && !isTheEndOfX11(message)) return previousHandler(type, context, message);
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) actsOfProgram.last();
    if (isWayland) actsOfProgram.startAnew();
    std::fputs(LostDisplay::lastWords, stderr);
    // Destroying static objects below threads that still run would crash.
    ::_exit(EXIT_FAILURE);
}

}  // namespace

LostDisplay::LostDisplay(Acts acts) {
    actsOfProgram = std::move(acts);
    previousHandler = qInstallMessageHandler(handleMessage);
}

LostDisplay::~LostDisplay() {
    qInstallMessageHandler(previousHandler);
    actsOfProgram = {};
}

}  // namespace ovrin
