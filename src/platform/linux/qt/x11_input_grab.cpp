#include "platform/linux/qt/x11_input_grab.h"

#include <QWidget>
#include <QWindow>

namespace ovrin {

namespace {
constexpr int interval = 5;        // milliseconds
constexpr int latestQuick = 1000;  // milliseconds after which another program is known to hold them
constexpr int slowInterval = 100;
}  // namespace

X11InputGrab::X11InputGrab(QWidget& window, Devices devices) : QObject(&window), window_(window), devices_(devices) {
    connect(&attempts_, &QTimer::timeout, this, &X11InputGrab::attempt);
    attempts_.start(interval);
    QTimer::singleShot(latestQuick, this, [this] { attempts_.setInterval(slowInterval); });
    QTimer::singleShot(0, this, &X11InputGrab::attempt);  // by then it is up
}

// Without the pointer a menu would not notice clicks elsewhere.
void X11InputGrab::attempt() {
    if (!window_.isVisible()) return attempts_.stop();
    const bool hasPointer = devices_ == Devices::keyboard || window_.windowHandle()->setMouseGrabEnabled(true);
    const bool hasKeyboard = window_.windowHandle()->setKeyboardGrabEnabled(true);
    if (hasPointer && hasKeyboard) attempts_.stop();
}

}  // namespace ovrin
