#include "platform/linux/qt/wayland_activation.h"

#include <QGuiApplication>
#include <QWindow>
#include <cstdint>
#include <cstring>

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

#include "platform/linux/qt/wayland_window.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "xdg-activation-v1-client.h"

namespace ovrin::wayland {

namespace {

using Queue = WaylandObject<wl_event_queue, wl_event_queue_destroy>;
using Token = WaylandObject<xdg_activation_token_v1, xdg_activation_token_v1_destroy>;

// The compositor's half on the toolkit's connection, to which windows' surfaces belong, with a queue of its own.
class Activation {
public:
    Activation() {
        QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
        display_ = static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
        queue_.reset(wl_display_create_queue(display_));
        const WaylandObject<wl_display, wl_proxy_wrapper_destroy> wrapper(
            static_cast<wl_display*>(wl_proxy_create_wrapper(display_)));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper.get()), queue_.get());
        const WaylandObject<wl_registry, wl_registry_destroy> registry(wl_display_get_registry(wrapper.get()));
        std::uint32_t number = 0;
        static constexpr wl_registry_listener listener = {
            [](void* found, wl_registry* /*registry*/, std::uint32_t name, const char* interface,
               std::uint32_t /*version*/) {
                if (std::strcmp(interface, xdg_activation_v1_interface.name) == 0)
                    *static_cast<std::uint32_t*>(found) = name;
            },
            [](void* /*found*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}};
        wl_registry_add_listener(registry.get(), &listener, &number);
        roundTrip();
        if (number == 0) return;
        activation_.reset(
            static_cast<xdg_activation_v1*>(wl_registry_bind(registry.get(), number, &xdg_activation_v1_interface, 1)));
    }

    // Null where the compositor knows no tokens.
    xdg_activation_v1* get() const { return activation_.get(); }
    void roundTrip() const { wl_display_roundtrip_queue(display_, queue_.get()); }

private:
    wl_display* display_ = nullptr;
    Queue queue_;
    WaylandObject<xdg_activation_v1, xdg_activation_v1_destroy> activation_;
};

// Null where the window has none, because it is not on Wayland or not shown.
wl_surface* surfaceOf(QWindow& window) {
    if (!isToolkit()) return nullptr;
    return static_cast<wl_surface*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
}

}  // namespace

bool activate(QWindow& window, const std::string& token) {
    wl_surface* const surface = surfaceOf(window);
    if (surface == nullptr) return false;
    const Activation activation;
    if (activation.get() == nullptr) return false;
    xdg_activation_v1_activate(activation.get(), token.c_str(), surface);
    activation.roundTrip();
    return true;
}

std::string requestActivationToken(QWindow& window) {
    std::string token;
    wl_surface* const surface = surfaceOf(window);
    if (surface == nullptr) return token;
    const Activation activation;
    if (activation.get() == nullptr) return token;
    const Token request(xdg_activation_v1_get_activation_token(activation.get()));
    static constexpr xdg_activation_token_v1_listener listener = {
        [](void* given, xdg_activation_token_v1* /*request*/, const char* text) {
            *static_cast<std::string*>(given) = text;
        }};
    xdg_activation_token_v1_add_listener(request.get(), &listener, &token);
    xdg_activation_token_v1_set_surface(request.get(), surface);
    xdg_activation_token_v1_commit(request.get());
    activation.roundTrip();
    return token;
}

}  // namespace ovrin::wayland
