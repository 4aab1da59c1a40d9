#include "desktop/bus_view.h"

#include <chrono>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr int callPatience = 10'000;  // milliseconds

[[noreturn]] void fail(const std::string& what, GError* error) {
    const std::string description = what + ": " + error->message;
    g_error_free(error);
    throw Error(description);
}

const BusView::Method hasOwnerMethod{.destination = "org.freedesktop.DBus",
                                     .path = "/org/freedesktop/DBus",
                                     .interface = "org.freedesktop.DBus",
                                     .name = "NameHasOwner"};

}  // namespace

BusView::BusView(const std::string& address) {
    GError* error = nullptr;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_.reset(g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, &error));
    if (error != nullptr) fail("no session bus", error);
}

bool BusView::hasOwner(const std::string& name) const {
    const Variant reply = call(hasOwnerMethod, g_variant_new("(s)", name.c_str()));
    gboolean owned = FALSE;
    g_variant_get(reply.get(), "(b)", &owned);
    return owned != FALSE;
}

std::vector<std::string> BusView::names() const {
    Method method = hasOwnerMethod;
    method.name = "ListNames";
    const Variant reply = call(method);
    std::vector<std::string> names;
    GVariantIter* iterator = nullptr;
    g_variant_get(reply.get(), "(as)", &iterator);
    const char* name = nullptr;
    while (g_variant_iter_next(iterator, "&s", &name) != FALSE) names.emplace_back(name);
    g_variant_iter_free(iterator);
    return names;
}

Variant BusView::call(const Method& method, GVariant* arguments) const {
    GError* error = nullptr;
    Variant reply(g_dbus_connection_call_sync(connection_.get(), method.destination.c_str(), method.path.c_str(),
                                              method.interface.c_str(), method.name.c_str(), arguments, nullptr,
                                              G_DBUS_CALL_FLAGS_NO_AUTO_START, callPatience, nullptr, &error));
    if (error != nullptr) fail(method.interface + "." + method.name, error);
    return reply;
}

Variant BusView::property(const Method& property) const {
    Method get = property;
    get.interface = "org.freedesktop.DBus.Properties";
    get.name = "Get";
    const Variant reply = call(get, g_variant_new("(ss)", property.interface.c_str(), property.name.c_str()));
    GVariant* value = nullptr;
    g_variant_get(reply.get(), "(v)", &value);
    return Variant(value);
}

}  // namespace ovrin
