#include "platform/linux/qt/input_focus_watch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

#include "platform/linux/qt/layer_window.h"
#include "platform/linux/qt/x11_window.h"

namespace ovrin {

namespace {
constexpr int returnMilliseconds = 100;  // within which focus that comes back has not gone; the toolkit waits as long
}

InputFocusWatch::InputFocusWatch(QWidget& window) : QObject(&window), window_(window) {
    delay_.setSingleShot(true);
    delay_.setInterval(returnMilliseconds);
    connect(&delay_, &QTimer::timeout, this, &InputFocusWatch::judge);
    window.installEventFilter(this);
    QCoreApplication::instance()->installNativeEventFilter(this);
    if (const LayerShell* const shell = LayerShell::ofToolkit()) {
        const auto leave = [this](const QWindow* left) {
            if (left == window_.windowHandle() && window_.isVisible()) emit this->left();
        };
        connect(shell, &LayerShell::keyboardLeft, this, leave, Qt::QueuedConnection);
    }
}

bool InputFocusWatch::eventFilter(QObject* /*watched*/, QEvent* event) {
    // Later, when the window itself has dealt with it.
    if (event->type() == QEvent::ActivationChange)
        QMetaObject::invokeMethod(
            this, [this] { judge(); }, Qt::QueuedConnection);
    return false;
}

// The toolkit says nothing of focus that goes while a grab lasts: the window is inactive then already.
bool InputFocusWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_FOCUS_OUT) return false;
    if (reinterpret_cast<const xcb_focus_out_event_t*>(event)->event == window_.internalWinId()) delay_.start();
    return false;
}

void InputFocusWatch::judge() {
    if (LayerWindow::isOne(window_)) return;  // of those the shell tells when
    const QWindow* const window = window_.windowHandle();
    if (window == nullptr || !window_.isVisible() || window_.isActiveWindow() || x11::hasInputFocus(*window)) return;
    emit left();
}

}  // namespace ovrin
