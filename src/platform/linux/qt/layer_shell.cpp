#include "platform/linux/qt/layer_shell.h"

#include <QGuiApplication>
#include <algorithm>
#include <string_view>
#include <utility>

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qwindowsysteminterface.h>
#include <unistd.h>

#include "platform/linux/qt/attached_window.h"
#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

namespace {

constexpr std::uint32_t highestVersion = 4;
constexpr std::uint32_t seatVersion = 5;

LayerShell& shellOf(void* data) {
    return *static_cast<LayerShell*>(data);
}

// Makes objects whose events come to the queue, from the first on.
template <typename Object>
using Wrapper = WaylandObject<Object, wl_proxy_wrapper_destroy>;

template <typename Object>
Wrapper<Object> onQueue(Object* object, wl_event_queue* queue) {
    auto* const wrapper = static_cast<Object*>(wl_proxy_create_wrapper(object));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    return Wrapper<Object>(wrapper);
}

// Events come to the queue that the toolkit dispatches from now on.
template <typename Object>
void giveToToolkit(Object* object) {
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(object), nullptr);
}

}  // namespace

LayerShell* LayerShell::ofToolkit() {
    if (!QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) return nullptr;
    // Never destroyed: the toolkit's connection may be gone by then.
    static LayerShell* const shell = [] {
        auto* const made = new LayerShell;
        auto* const native = QGuiApplication::platformNativeInterface();
        made->bind(static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display")));
        if (made->shell_ != nullptr) AttachedWindow::attachAll(*made);
        return made;
    }();
    return shell->shell_ == nullptr ? nullptr : shell;
}

void LayerShell::bind(wl_display* display) {
    display_ = display;
    queue_ = wl_display_create_queue(display);
    const Wrapper<wl_display> wrapper = onQueue(display, queue_);
    wl_registry* const registry = wl_display_get_registry(wrapper.get());
    static constexpr wl_registry_listener listener = {
        [](void* self, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
            LayerShell& shell = shellOf(self);
            // Other compositors have protocols with KWin's name, too.
            if (std::string_view(interface) == "org_kde_plasma_shell") shell.isOnKWin_ = true;
            if (std::string_view(interface) == wl_seat_interface.name) return shell.addSeat(registry, name, version);
            if (std::string_view(interface) == wl_subcompositor_interface.name) {
                shell.subcompositor_ =
                    static_cast<wl_subcompositor*>(wl_registry_bind(registry, name, &wl_subcompositor_interface, 1));
            }
            if (std::string_view(interface) != zwlr_layer_shell_v1_interface.name) return;
            shell.version_ = std::min(version, highestVersion);
            shell.shell_ = static_cast<zwlr_layer_shell_v1*>(
                wl_registry_bind(registry, name, &zwlr_layer_shell_v1_interface, shell.version_));
        },
        [](void* /*self*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}};
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip_queue(display, queue_);
    giveToToolkit(registry);
    // The toolkit finds nobody active where no window of its own kinds is.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* window) {
        if (window == nullptr && keyboardWindow_ != nullptr)
            QWindowSystemInterface::handleWindowActivated(keyboardWindow_);
    });
}

// Seats may come and go; their keyboards come and go with the devices.
void LayerShell::addSeat(wl_registry* registry, std::uint32_t name, std::uint32_t version) {
    auto* const seat =
        static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, std::min(version, seatVersion)));
    giveToToolkit(seat);
    seats_.push_back({.seat = seat});
    static constexpr wl_seat_listener listener = {
        [](void* self, wl_seat* seat, std::uint32_t capabilities) { shellOf(self).listenTo(seat, capabilities); },
        [](void* /*self*/, wl_seat* /*seat*/, const char* /*name*/) {}};
    wl_seat_add_listener(seat, &listener, this);
}

void LayerShell::listenTo(wl_seat* seat, std::uint32_t capabilities) {
    wl_keyboard*& keyboard = std::ranges::find(seats_, seat, &Seat::seat)->keyboard;
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (!hasKeyboard && keyboard != nullptr) {
        wl_keyboard_release(keyboard);
        keyboard = nullptr;
        setKeyboardWindow(nullptr);
    }
    if (!hasKeyboard || keyboard != nullptr) return;
    keyboard = wl_seat_get_keyboard(seat);
    static constexpr wl_keyboard_listener listener = {
        [](void* /*self*/, wl_keyboard* /*keyboard*/, std::uint32_t /*format*/, std::int32_t descriptor,
           std::uint32_t /*size*/) { ::close(descriptor); },
        [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, wl_surface* surface, wl_array* /*keys*/) {
            LayerShell& shell = shellOf(self);
            const auto found = std::ranges::find(shell.shown_, surface, &Shown::surface);
            shell.setKeyboardWindow(found == shell.shown_.end() ? nullptr : found->window);
        },
        [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, wl_surface* /*surface*/) {
            shellOf(self).setKeyboardWindow(nullptr);
        },
        [](void* /*self*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t /*time*/,
           std::uint32_t /*key*/, std::uint32_t /*state*/) {},
        [](void* /*self*/, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t /*depressed*/,
           std::uint32_t /*latched*/, std::uint32_t /*locked*/, std::uint32_t /*group*/) {},
        [](void* /*self*/, wl_keyboard* /*keyboard*/, std::int32_t /*rate*/, std::int32_t /*delay*/) {}};
    wl_keyboard_add_listener(keyboard, &listener, this);
}

void LayerShell::setKeyboardWindow(QWindow* window) {
    QWindow* const before = std::exchange(keyboardWindow_, window);
    if (before == window) return;
    const bool isOther = window != nullptr || QGuiApplication::focusWindow() == before;
    if (isOther) QWindowSystemInterface::handleWindowActivated(window);
    if (before != nullptr) emit keyboardLeft(before);
}

void LayerShell::addForKeyboard() {
    if (++forKeyboard_ == 1) emit isAnyForKeyboardChanged();
}

void LayerShell::removeForKeyboard() {
    if (--forKeyboard_ == 0) emit isAnyForKeyboardChanged();
}

wl_surface* LayerShell::surfaceOf(QWindow& window) {
    return static_cast<wl_surface*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
}

zwlr_layer_surface_v1* LayerShell::giveRole(QWindow& window, wl_output* output, std::uint32_t layer,
                                            const zwlr_layer_surface_v1_listener& listener, void* data) {
    // KWin goes by the name: windows of other kinds would grow and fade in, and out for 200 ms, in which the picture of
    // what was below the overlay is taken. Elsewhere users write rules for it.
    const char* const name = isOnKWin_ ? "utility" : "ovrin";
    wl_surface* const surface = surfaceOf(window);
    const Wrapper<zwlr_layer_shell_v1> wrapper = onQueue(shell_, queue_);
    zwlr_layer_surface_v1* const role =
        zwlr_layer_shell_v1_get_layer_surface(wrapper.get(), surface, output, layer, name);
    zwlr_layer_surface_v1_add_listener(role, &listener, data);
    shown_.push_back({.window = &window, .surface = surface});
    return role;
}

bool LayerShell::waitFor(zwlr_layer_surface_v1* role, const std::function<bool()>& isSo) {
    bool isThere = true;
    while (isThere && !isSo()) isThere = wl_display_roundtrip_queue(display_, queue_) >= 0;
    giveToToolkit(role);
    wl_display_dispatch_queue_pending(display_, queue_);  // what came before that
    return isThere;
}

wl_subsurface* LayerShell::attach(QWindow& window, QWindow& owner, const QPoint& place) {
    wl_surface* const ownerSurface = surfaceOf(owner);
    wl_subsurface* const role = wl_subcompositor_get_subsurface(subcompositor_, surfaceOf(window), ownerSurface);
    wl_subsurface_set_position(role, place.x(), place.y());
    wl_subsurface_set_desync(role);
    wl_surface_commit(ownerSurface);
    return role;
}

void LayerShell::end(QWindow& window, zwlr_layer_surface_v1* role) {
    zwlr_layer_surface_v1_destroy(role);
    std::erase_if(shown_, [&window](const Shown& shown) { return shown.window == &window; });
    if (keyboardWindow_ != &window) return;
    keyboardWindow_ = nullptr;
    if (QGuiApplication::focusWindow() == &window) QWindowSystemInterface::handleWindowActivated(nullptr);
}

}  // namespace ovrin
