#include "desktop/notification_recorder.h"

#include <exception>
#include <future>
#include <optional>

#include "base/error.h"
#include "desktop/bus_view.h"

namespace ovrin {
namespace {

constexpr const char* serviceName = "org.freedesktop.Notifications";
constexpr const char* servicePath = "/org/freedesktop/Notifications";
constexpr const char* description = R"(<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
    <arg type="s" direction="out"/><arg type="s" direction="out"/></method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
  </interface></node>)";

}  // namespace

NotificationRecorder::NotificationRecorder(const std::string& busAddress)
    : context_(g_main_context_new(), g_main_context_unref),
      loop_(g_main_loop_new(context_.get(), FALSE), g_main_loop_unref) {
    std::promise<void> isServing;
    auto served = isServing.get_future();
    thread_ = std::thread([this, busAddress, &isServing] {
        g_main_context_push_thread_default(context_.get());
        try {
            const BusView bus(busAddress);
            std::unique_ptr<GDBusNodeInfo, decltype(&g_dbus_node_info_unref)> node(
                g_dbus_node_info_new_for_xml(description, nullptr), g_dbus_node_info_unref);
            const GDBusInterfaceVTable table{
                .method_call = handleCall, .get_property = nullptr, .set_property = nullptr, .padding = {}};
            g_dbus_connection_register_object(bus.connection(), servicePath, node->interfaces[0], &table, this, nullptr,
                                              nullptr);
            constexpr std::uint32_t doNotQueue = 4;
            const Variant reply = bus.call({.destination = "org.freedesktop.DBus",
                                            .path = "/org/freedesktop/DBus",
                                            .interface = "org.freedesktop.DBus",
                                            .name = "RequestName"},
                                           g_variant_new("(su)", serviceName, doNotQueue));
            std::uint32_t answer = 0;
            g_variant_get(reply.get(), "(u)", &answer);
            if (answer != 1) throw Error("the bus has a notification daemon already");
            isServing.set_value();
            g_main_loop_run(loop_.get());
        } catch (...) {
            isServing.set_exception(std::current_exception());
        }
        g_main_context_pop_thread_default(context_.get());
    });
    try {
        served.get();
    } catch (...) {
        thread_.join();
        throw;
    }
}

NotificationRecorder::~NotificationRecorder() {
    // From inside of the loop: it may not have begun to run.
    const auto quit = [](void* loop) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    };
    g_main_context_invoke(context_.get(), quit, loop_.get());
    thread_.join();
}

std::vector<NotificationRecorder::Notification> NotificationRecorder::notifications() const {
    const std::lock_guard lock(mutex_);
    return notifications_;
}

void NotificationRecorder::handleCall(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                                      const char* /*interface*/, const char* method, GVariant* arguments,
                                      GDBusMethodInvocation* invocation, void* recorder) {
    const std::string name = method;
    if (name == "Notify") {
        auto& self = *static_cast<NotificationRecorder*>(recorder);
        const char *program = nullptr, *title = nullptr, *body = nullptr;
        g_variant_get_child(arguments, 0, "&s", &program);
        g_variant_get_child(arguments, 3, "&s", &title);
        g_variant_get_child(arguments, 4, "&s", &body);
        const std::lock_guard lock(self.mutex_);
        self.notifications_.push_back({.program = program, .title = title, .body = body});
        g_dbus_method_invocation_return_value(
            invocation, g_variant_new("(u)", static_cast<std::uint32_t>(self.notifications_.size())));
    } else if (name == "GetCapabilities") {
        const char* const capabilities[] = {"body", nullptr};
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(^as)", capabilities));
    } else if (name == "GetServerInformation") {
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(ssss)", "recorder", "Ovrin", "1", "1.2"));
    } else {
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }
}

}  // namespace ovrin
