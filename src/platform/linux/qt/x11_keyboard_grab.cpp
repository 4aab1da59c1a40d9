#include "platform/linux/qt/x11_keyboard_grab.h"

#include <QWidget>
#include <QWindow>

namespace ovrin {

namespace {
constexpr int interval = 5;        // milliseconds
constexpr int latestQuick = 1000;  // milliseconds after which another program is known to hold the keyboard
constexpr int slowInterval = 100;
}  // namespace

X11KeyboardGrab::X11KeyboardGrab(QWidget& window) : QObject(&window), window_(window) {
    connect(&attempts_, &QTimer::timeout, this, &X11KeyboardGrab::attempt);
    attempts_.start(interval);
    QTimer::singleShot(latestQuick, this, [this] { attempts_.setInterval(slowInterval); });
    QTimer::singleShot(0, this, &X11KeyboardGrab::attempt);  // by then it is up
}

void X11KeyboardGrab::attempt() {
    if (window_.windowHandle()->setKeyboardGrabEnabled(true)) attempts_.stop();
}

}  // namespace ovrin
