#include "platform/linux/qt/window_role.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

#include "platform/linux/qt/x11_keyboard_grab.h"
#include "platform/linux/qt/x11_window.h"

namespace ovrin {

namespace {

Qt::WindowFlags flagsFor(WindowRole role) {
    const Qt::WindowFlags own = Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    switch (role) {
        case WindowRole::ordinary:
        case WindowRole::chat:
            return Qt::Window | own;
        case WindowRole::alert:
        case WindowRole::palette:
            return Qt::Tool | Qt::WindowStaysOnTopHint | own;
        case WindowRole::card:
            return Qt::ToolTip | Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint | own;
        case WindowRole::overlay:
            return Qt::Window | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint | own;
    }
    return Qt::Window | own;
}

// Does each time what has to be done between the making of the native window and its coming up.
class RoleKeeper final : public QObject {
public:
    RoleKeeper(QWidget& window, WindowRole role) : QObject(&window), window_(window), role_(role) {
        window.installEventFilter(this);
    }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && !event->spontaneous()) comeUp();
        return QObject::eventFilter(watched, event);
    }

    void comeUp() {
        if (role_ == WindowRole::palette || role_ == WindowRole::chat)
            x11::keepOnEveryWorkspace(*window_.windowHandle());
        if (role_ == WindowRole::overlay) new X11KeyboardGrab(window_);
    }

    QWidget& window_;
    WindowRole role_;
};

}  // namespace

void giveRole(QWidget& window, WindowRole role) {
    window.setWindowFlags(flagsFor(role));
    window.setAttribute(Qt::WA_ShowWithoutActivating, role == WindowRole::card);
    new RoleKeeper(window, role);
}

void activate(QWindow& window) {
    x11::activate(window);
}

bool hasInputFocus(const QWindow& window) {
    return x11::hasInputFocus(window);
}

bool knowsOwnShadows() {
    return x11::knowsOwnShadows();
}

void setShadowMargins(QWindow& window, const ShadowMargins& margins) {
    x11::setShadowMargins(window, margins);
}

void setFirstColor(QWindow& window, const QColor& color) {
    x11::setFirstColor(window, color);
}

bool showWindowMenu(QWindow& window) {
    return x11::showWindowMenu(window);
}

}  // namespace ovrin
