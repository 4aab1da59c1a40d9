#include "platform/linux/qt/window_role.h"

#include <QEvent>
#include <QVariant>
#include <QWidget>
#include <QWindow>
#include <optional>
#include <utility>

#include "platform/linux/qt/layer_window.h"
#include "platform/linux/qt/wayland_activation.h"
#include "platform/linux/qt/wayland_window.h"
#include "platform/linux/qt/x11_input_grab.h"
#include "platform/linux/qt/x11_window.h"

namespace ovrin {

namespace {

std::string activationToken;  // until it is used; the windows are the process's too

Qt::WindowFlags flagsFor(const QWidget& window, WindowRole role) {
    const Qt::WindowFlags own = Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    switch (role) {
        case WindowRole::ordinary:
        case WindowRole::chat:
        case WindowRole::chatBar:
            return Qt::Window | own;
        case WindowRole::alert:
        case WindowRole::palette:
            return Qt::Tool | Qt::WindowStaysOnTopHint | own;
        case WindowRole::card:
        case WindowRole::toast:
            return Qt::ToolTip | Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint | own;
        case WindowRole::menu:
            return window.windowFlags() | own;
        case WindowRole::overlay:
            // Compositors fade others in and out, and the picture of what was below is taken right after it.
            return Qt::Tool | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint | own;
    }
    return Qt::Window | own;
}

// None for what is an ordinary window in a desktop with a layer shell, too.
std::optional<LayerWindow::Setup> layerFor(const QWidget& window, WindowRole role) {
    using Keyboard = LayerWindow::Keyboard;
    switch (role) {
        case WindowRole::palette:
            return LayerWindow::Setup{.keyboard = Keyboard::untilClickElsewhere};
        case WindowRole::chatBar:
            return LayerWindow::Setup{.place = LayerWindow::Place::middle, .keyboard = Keyboard::untilClickElsewhere};
        case WindowRole::card:
            return LayerWindow::Setup{};
        case WindowRole::toast:
            return LayerWindow::Setup{.place = LayerWindow::Place::top};
        case WindowRole::overlay:
            return LayerWindow::Setup{.place = LayerWindow::Place::output, .keyboard = Keyboard::always};
        case WindowRole::menu:
            // The toolkit's own menus need a window of its own kinds that they belong to.
            if (window.parentWidget() != nullptr && !LayerWindow::isOne(*window.parentWidget()->window())) return {};
            return LayerWindow::Setup{.keyboard = window.parentWidget() == nullptr ? Keyboard::always : Keyboard::none,
                                      .kind = LayerWindow::Kind::menu};
        case WindowRole::ordinary:
        case WindowRole::chat:
        case WindowRole::alert:
            return {};
    }
    return {};
}

// Does each time what has to be done on X11 between the making of the native window and its coming up.
class X11Role final : public QObject {
public:
    X11Role(QWidget& window, WindowRole role) : QObject(&window), window_(window), role_(role) {
        window.installEventFilter(this);
    }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && !event->spontaneous()) comeUp();
        return QObject::eventFilter(watched, event);
    }

    void comeUp() {
        if (role_ == WindowRole::overlay) {
            new X11InputGrab(window_, X11InputGrab::Devices::keyboard);
        } else {
            x11::keepOnEveryWorkspace(*window_.windowHandle());
        }
    }

    QWidget& window_;
    WindowRole role_;
};

// What the role is kept by.
QObject* keeperFor(QWidget& window, WindowRole role) {
    if (LayerShell* const shell = LayerShell::ofToolkit()) {
        if (const auto layer = layerFor(window, role)) return new LayerWindow(*shell, window, *layer);
    }
    if (wayland::isToolkit()) {
        const bool isOrdinary = role == WindowRole::ordinary || role == WindowRole::chat;
        return isOrdinary ? new wayland::FloatingStart(window) : nullptr;
    }
    const bool isEverywhere = role == WindowRole::palette || role == WindowRole::chat || role == WindowRole::chatBar;
    return isEverywhere || role == WindowRole::overlay ? new X11Role(window, role) : nullptr;
}

constexpr const char* roleProperty = "ovrinRole";
constexpr const char* keeperProperty = "ovrinRoleKeeper";

// Makes room for another role.
void takeRole(QWidget& window) {
    window.hide();
    delete window.property(keeperProperty).value<QObject*>();
    if (QWindow* const native = window.windowHandle()) native->destroy();
}

}  // namespace

bool giveRole(QWidget& window, WindowRole role) {
    const QVariant before = window.property(roleProperty);
    const bool isOther = before.isValid() && before.toInt() != static_cast<int>(role);
    // Elsewhere the chat and its bar are the same.
    if (before.isValid() && (!isOther || LayerShell::ofToolkit() == nullptr)) return false;
    if (isOther) takeRole(window);
    window.setWindowFlags(flagsFor(window, role));
    const bool takesKeyboard = role != WindowRole::card && role != WindowRole::toast;
    window.setAttribute(Qt::WA_ShowWithoutActivating, !takesKeyboard);
    window.setProperty(roleProperty, static_cast<int>(role));
    window.setProperty(keeperProperty, QVariant::fromValue(keeperFor(window, role)));
    if (role == WindowRole::toast && wayland::isToolkit()) window.setWindowFlag(Qt::WindowTransparentForInput);
    return isOther;
}

bool canStayOnTop() {
    return !wayland::isToolkit();
}

void setActivationToken(std::string token) {
    activationToken = std::move(token);
}

void activate(QWindow& window) {
    const std::string token = std::exchange(activationToken, {});
    if (!token.empty() && wayland::activate(window, token)) return;
    x11::activate(window);
}

bool knowsOwnShadows() {
    return wayland::isToolkit() ? wayland::knowsMargins() : x11::knowsOwnShadows();
}

void setShadowMargins(QWindow& window, const ShadowMargins& margins) {
    if (!wayland::isToolkit()) return x11::setShadowMargins(window, margins);
    const int dead = margins.shadow - margins.grip;
    const QRect live(dead, dead, window.width() - 2 * dead, window.height() - 2 * dead);
    window.setMask(margins.shadow == 0 ? QRegion() : QRegion(live));
    const bool isLayer = window.flags().testFlag(Qt::BypassWindowManagerHint);
    if (!isLayer) wayland::setMargins(window, {margins.shadow, margins.shadow, margins.shadow, margins.shadow});
}

void setFirstColor(QWindow& window, const QColor& color) {
    x11::setFirstColor(window, color);
}

void holdInput(QWidget& menu) {
    if (!wayland::isToolkit()) new X11InputGrab(menu, X11InputGrab::Devices::both);
}

bool showWindowMenu(QWindow& window) {
    return x11::showWindowMenu(window);
}

}  // namespace ovrin
