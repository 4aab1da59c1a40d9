#include "platform/linux/desktop/bus_connection.h"

#include "base/environment.h"
#include "platform/linux/desktop/session_bus.h"

namespace ovrin {

BusConnection connectToSessionBus(GCancellable* deadline) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) return nullptr;
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, deadline, nullptr), g_free);
    if (!address) return nullptr;
    constexpr auto client = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return BusConnection(g_dbus_connection_new_for_address_sync(address.get(), client, nullptr, deadline, nullptr));
}

}  // namespace ovrin
