#include "platform/linux/qt/wayland_activation.h"

#include <QGuiApplication>
#include <QWindow>
#include <cstdint>
#include <cstring>
#include <memory>

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

#include "platform/linux/qt/wayland_window.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "xdg-activation-v1-client.h"

namespace ovrin::wayland {

namespace {

using Activation = WaylandObject<xdg_activation_v1, xdg_activation_v1_destroy>;

struct DestroysWrapper {
    void operator()(wl_display* wrapper) const { wl_proxy_wrapper_destroy(wrapper); }
};

// The compositor's half for the toolkit's connection, to which the window's surface belongs; null without one.
Activation bind(wl_display* display) {
    using Queue = WaylandObject<wl_event_queue, wl_event_queue_destroy>;
    const Queue queue(wl_display_create_queue(display));
    const std::unique_ptr<wl_display, DestroysWrapper> wrapper(
        static_cast<wl_display*>(wl_proxy_create_wrapper(display)));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper.get()), queue.get());
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
    wl_display_roundtrip_queue(display, queue.get());
    if (number == 0) return nullptr;
    Activation activation(
        static_cast<xdg_activation_v1*>(wl_registry_bind(registry.get(), number, &xdg_activation_v1_interface, 1)));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(activation.get()), nullptr);  // it outlives the queue here
    return activation;
}

}  // namespace

bool activate(QWindow& window, const std::string& token) {
    if (!isToolkit()) return false;
    QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
    auto* const display = static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
    auto* const surface = static_cast<wl_surface*>(native->nativeResourceForWindow("surface", &window));
    if (display == nullptr || surface == nullptr) return false;
    const Activation activation = bind(display);
    if (!activation) return false;
    xdg_activation_v1_activate(activation.get(), token.c_str(), surface);
    wl_display_flush(display);
    return true;
}

}  // namespace ovrin::wayland
