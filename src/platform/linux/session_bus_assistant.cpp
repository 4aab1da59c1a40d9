#include "platform/linux/session_bus_assistant.h"

#include <memory>

#include <gio/gio.h>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/application_name.h"
#include "platform/linux/session_bus.h"

namespace ovrin {

namespace {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
struct UnreferenceVariant {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

// The sentence of a failure of the library.
std::string takeMessage(GError* failure) {
    g_dbus_error_strip_remote_error(failure);
    std::string message = failure->message;
    g_error_free(failure);
    return message;
}

bool meansNotRunning(const GError* failure) {
    return g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
           g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE;
}

}  // namespace

RunningAssistant::Reply SessionBusAssistant::perform(const std::string& commandName) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) {
        throw Error("no session bus: the running assistant cannot be reached");
    }
    GError* failure = nullptr;
    const std::unique_ptr<GDBusConnection, Unreference> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &failure));
    if (!bus) throw Error("no session bus: " + takeMessage(failure));
    GVariant* const parameters =
        g_variant_new("(s@av@a{sv})", commandName.c_str(), g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0),
                      g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0));
    const std::unique_ptr<GVariant, UnreferenceVariant> reply(g_dbus_connection_call_sync(
        bus.get(), applicationId, applicationObjectPath, applicationInterface, "ActivateAction", parameters, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(patience_.count()), nullptr, &failure));
    if (reply) return Reply::accepted;
    if (meansNotRunning(failure)) {
        g_error_free(failure);
        return Reply::notRunning;
    }
    throw Error("the assistant did not answer: " + takeMessage(failure));
}

}  // namespace ovrin
