#include "platform/linux/desktop/session_bus_assistant.h"

#include <memory>
#include <optional>
#include <string>

#include <gio/gio.h>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/activation_token.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/bus_deadline.h"
#include "platform/linux/desktop/detached_program.h"
#include "platform/linux/desktop/own_executable.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/desktop/session_displays.h"

namespace ovrin {

namespace {

// The sentence of a failure of the library.
std::string takeMessage(GError* failure) {
    g_dbus_error_strip_remote_error(failure);
    const bool isTimeUp = g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE;
    std::string message = isTimeUp ? "nothing answers" : failure->message;
    g_error_free(failure);
    return message;
}

bool meansNotRunning(const GError* failure) {
    return g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
           g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE;
}

std::unique_ptr<GDBusConnection, UnreferenceObject> connect(const BusDeadline& deadline) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) {
        throw Error("no session bus: the running assistant cannot be reached");
    }
    GError* failure = nullptr;
    std::unique_ptr<GDBusConnection, UnreferenceObject> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), &failure));
    if (!bus) throw Error("no session bus: " + takeMessage(failure));
    return bus;
}

// What the window that comes up is to be let to the front by.
GVariant* platformData(const Environment& environment) {
    GVariantBuilder data;
    g_variant_builder_init(&data, G_VARIANT_TYPE_VARDICT);
    const auto add = [&data](const char* key, const std::optional<std::string>& value) {
        if (value) g_variant_builder_add(&data, "{sv}", key, g_variant_new_string(value->c_str()));
    };
    add(activation::tokenKey, activation::token(environment));
    add(activation::startupKey, activation::startupId(environment));
    return g_variant_builder_end(&data);
}

using Context = std::unique_ptr<GMainContext, decltype(&g_main_context_unref)>;

void attach(GSource* source, GSourceFunc then, bool& isOver, const Context& context) {
    g_source_set_callback(source, then, &isOver, nullptr);
    g_source_attach(source, context.get());
    g_source_unref(source);
}

// Returns when an assistant is on the bus, when the program has ended, or when the patience has.
void waitForArrival(GDBusConnection* bus, pid_t program, std::chrono::milliseconds patience) {
    const Context context(g_main_context_new(), g_main_context_unref);
    g_main_context_push_thread_default(context.get());
    bool isOver = false;
    const auto appeared = [](GDBusConnection* /*bus*/, const gchar* /*name*/, const gchar* /*owner*/, gpointer over) {
        *static_cast<bool*>(over) = true;
    };
    const auto ended = [](GPid /*program*/, gint /*status*/, gpointer over) { *static_cast<bool*>(over) = true; };
    const auto timeIsUp = [](gpointer over) -> gboolean {
        *static_cast<bool*>(over) = true;
        return G_SOURCE_REMOVE;
    };
    const guint watch = g_bus_watch_name_on_connection(bus, applicationId, G_BUS_NAME_WATCHER_FLAGS_NONE, appeared,
                                                       nullptr, &isOver, nullptr);
    attach(g_child_watch_source_new(program), G_SOURCE_FUNC(static_cast<GChildWatchFunc>(ended)), isOver, context);
    attach(g_timeout_source_new(static_cast<guint>(patience.count())), timeIsUp, isOver, context);
    while (!isOver) g_main_context_iteration(context.get(), TRUE);
    g_bus_unwatch_name(watch);
    g_main_context_pop_thread_default(context.get());
}

// Whether the bus knew how to start a program, which then ended. The bus may have been told of another display or none.
bool meansFailedStart(const GError* failure) {
    const std::unique_ptr<gchar, decltype(&g_free)> name(g_dbus_error_get_remote_error(failure), g_free);
    return name && std::string_view(name.get()).starts_with("org.freedesktop.DBus.Error.Spawn.");
}

// False when the bus cannot.
bool startByBus(GDBusConnection* bus, std::chrono::milliseconds patience, const BusDeadline& deadline) {
    GError* failure = nullptr;
    const std::unique_ptr<GVariant, UnreferenceVariant> reply(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName",
        g_variant_new("(su)", applicationId, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, static_cast<int>(patience.count()),
        deadline.cancellable(), &failure));
    if (reply) return true;
    if (!meansNotRunning(failure) && !meansFailedStart(failure)) {
        throw Error("the assistant did not start: " + takeMessage(failure));
    }
    g_error_free(failure);
    return false;
}

// Of a program that starts with the session, on a slow disk.
constexpr auto patienceWithStart = std::chrono::seconds(20);

}  // namespace

RunningAssistant::Reply SessionBusAssistant::perform(const std::string& commandName) {
    const BusDeadline deadline(patience_);
    const auto bus = connect(deadline);
    GError* failure = nullptr;
    GVariant* const parameters =
        g_variant_new("(s@av@a{sv})", commandName.c_str(), g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0),
                      platformData(Environment::ofProcess()));
    const std::unique_ptr<GVariant, UnreferenceVariant> reply(g_dbus_connection_call_sync(
        bus.get(), applicationId, applicationObjectPath, applicationInterface, "ActivateAction", parameters, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(patience_.count()), deadline.cancellable(), &failure));
    if (reply) return Reply::accepted;
    if (meansNotRunning(failure)) {
        g_error_free(failure);
        return Reply::notRunning;
    }
    throw Error("the assistant did not answer: " + takeMessage(failure));
}

bool SessionBusAssistant::start() {
    const Environment environment = Environment::ofProcess();
    if (!hasDisplay(environment)) return false;
    const BusDeadline deadline(patienceWithStart);
    const auto bus = connect(deadline);
    if (startByBus(bus.get(), patienceWithStart, deadline)) return true;
    const pid_t program = startDetached(ownExecutable(), {"--autostart"}, environment);
    waitForArrival(bus.get(), program, patienceWithStart);
    return true;
}

}  // namespace ovrin
