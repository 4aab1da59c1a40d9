#include "platform/linux/session_bus_assistant.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

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

// Cancels what it is given to once the patience is over. Connecting to the bus has no time limit of its own.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds patience)
        : thread_([this, patience](const std::stop_token& isOver) {
              std::unique_lock lock(mutex_);
              changed_.wait_for(lock, isOver, patience, [] { return false; });
              if (!isOver.stop_requested()) g_cancellable_cancel(cancellable_.get());
          }) {}

    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    std::unique_ptr<GCancellable, Unreference> cancellable_{g_cancellable_new()};
    std::mutex mutex_;
    std::condition_variable_any changed_;  // never; a stop wakes it
    std::jthread thread_;                  // the last member: it uses the others
};

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

}  // namespace

RunningAssistant::Reply SessionBusAssistant::perform(const std::string& commandName) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) {
        throw Error("no session bus: the running assistant cannot be reached");
    }
    const Deadline deadline(patience_);
    GError* failure = nullptr;
    const std::unique_ptr<GDBusConnection, Unreference> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), &failure));
    if (!bus) throw Error("no session bus: " + takeMessage(failure));
    GVariant* const parameters =
        g_variant_new("(s@av@a{sv})", commandName.c_str(), g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0),
                      g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0));
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

}  // namespace ovrin
