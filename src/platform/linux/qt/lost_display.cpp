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
std::function<void()> lastActOfProgram;

// What Qt 6.4 says right before it ends the program; with a server that is there but ends the connection it is the
// last.
bool isTheEnd(const QString& message) {
    return message.startsWith(QLatin1String("The X11 connection broke")) ||
           message.startsWith(QLatin1String("The Wayland connection broke")) ||
           message.startsWith(QLatin1String("The Wayland connection experienced a fatal error"));
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (!isTheEnd(message)) return previousHandler(type, context, message);
    std::fputs("ovrin: the display server has ended the connection; the assistant ends\n", stderr);
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) lastActOfProgram();
    // Destroying static objects below threads that still run would crash.
    ::_exit(EXIT_FAILURE);
}

}  // namespace

LostDisplay::LostDisplay(std::function<void()> lastAct) {
    lastActOfProgram = std::move(lastAct);
    previousHandler = qInstallMessageHandler(handleMessage);
}

LostDisplay::~LostDisplay() {
    qInstallMessageHandler(previousHandler);
    lastActOfProgram = nullptr;
}

}  // namespace ovrin
