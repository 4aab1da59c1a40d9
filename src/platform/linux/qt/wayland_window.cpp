#include "platform/linux/qt/wayland_window.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMargins>
#include <QWidget>
#include <QWindow>

#include <dlfcn.h>
#include <qpa/qplatformwindow.h>

namespace ovrin::wayland {

namespace {

// Decorations that programs draw themselves reach this function of the toolkit's window through a header that Debian 12
// does not have.
using SetCustomMargins = void (*)(void* window, const QMargins& margins);

SetCustomMargins setCustomMargins() {
    static const auto function = [] {
        void* const library = ::dlopen("libQt6WaylandClient.so.6", RTLD_NOLOAD | RTLD_LAZY);
        void* const symbol =
            library == nullptr ? nullptr
                               : ::dlsym(library, "_ZN15QtWaylandClient14QWaylandWindow16setCustomMarginsERK8QMargins");
        return reinterpret_cast<SetCustomMargins>(symbol);
    }();
    return function;
}

constexpr const char* marginProperty = "ovrinMargins";

}  // namespace

bool isToolkit() {
    return QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

bool knowsMargins() {
    return setCustomMargins() != nullptr;
}

void setMargins(QWindow& window, const QMargins& margins) {
    if (!knowsMargins() || window.handle() == nullptr) return;
    auto* const platformWindow = dynamic_cast<void*>(window.handle());  // its most derived object begins there
    const QRect geometry = window.geometry();
    setCustomMargins()(platformWindow, margins);
    window.setGeometry(geometry);
}

FloatingStart::FloatingStart(QWidget& window) : QObject(&window), window_(window) {
    window.installEventFilter(this);
}

bool FloatingStart::eventFilter(QObject* watched, QEvent* event) {
    QWindow* const native = window_.windowHandle();
    if (watched == &window_) {
        if (event->type() == QEvent::Show && native != nullptr) native->installEventFilter(this);
        return false;
    }
    if (watched != native) return false;
    const bool isFilling = (native->windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0;
    if (event->type() == QEvent::Show && !isFilling) {
        isFixed_ = true;
        native->setMinimumSize(native->size());
        native->setMaximumSize(native->size());
    }
    // The first picture has been sent once this event has been dealt with.
    if (event->type() == QEvent::Expose && native->isExposed() && isFixed_) {
        QMetaObject::invokeMethod(this, &FloatingStart::loosen, Qt::QueuedConnection);
    }
    return false;
}

void FloatingStart::loosen() {
    QWindow* const native = window_.windowHandle();
    if (!std::exchange(isFixed_, false) || native == nullptr) return;
    native->setMinimumSize(window_.minimumSize());
    native->setMaximumSize(window_.maximumSize());
}

}  // namespace ovrin::wayland
