#include "desktop/bus_service.h"

#include <exception>
#include <future>
#include <utility>

#include "base/error.h"
#include "desktop/bus_view.h"

namespace ovrin {

BusService::BusService(const std::string& busAddress, Place place, Answer answer)
    : place_(std::move(place)),
      answer_(std::move(answer)),
      context_(g_main_context_new(), g_main_context_unref),
      loop_(g_main_loop_new(context_.get(), FALSE), g_main_loop_unref) {
    std::promise<void> isServing;
    auto served = isServing.get_future();
    thread_ = std::thread([this, busAddress, &isServing] {
        g_main_context_push_thread_default(context_.get());
        try {
            serve(busAddress, [&isServing] { isServing.set_value(); });
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

BusService::~BusService() {
    // From inside of the loop: it may not have begun to run.
    const auto quit = [](void* loop) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    };
    g_main_context_invoke(context_.get(), quit, loop_.get());
    thread_.join();
}

void BusService::serve(const std::string& busAddress, const std::function<void()>& isServing) {
    const BusView bus(busAddress);
    connection_ = bus.connection();
    const std::unique_ptr<GDBusNodeInfo, decltype(&g_dbus_node_info_unref)> node(
        g_dbus_node_info_new_for_xml(place_.description.c_str(), nullptr), g_dbus_node_info_unref);
    if (!node || node->interfaces[0] == nullptr) throw Error("no description of an interface");
    interface_ = node->interfaces[0]->name;
    const GDBusInterfaceVTable table{
        .method_call = handleCall, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    g_dbus_connection_register_object(connection_, place_.path.c_str(), node->interfaces[0], &table, this, nullptr,
                                      nullptr);
    constexpr std::uint32_t doNotQueue = 4;
    const Variant reply = bus.call({.destination = "org.freedesktop.DBus",
                                    .path = "/org/freedesktop/DBus",
                                    .interface = "org.freedesktop.DBus",
                                    .name = "RequestName"},
                                   g_variant_new("(su)", place_.name.c_str(), doNotQueue));
    std::uint32_t answer = 0;
    g_variant_get(reply.get(), "(u)", &answer);
    if (answer != 1) throw Error("somebody else is " + place_.name + " already");
    isServing();
    g_main_loop_run(loop_.get());
}

void BusService::emitSignal(const std::string& name, GVariant* values) const {
    g_dbus_connection_emit_signal(connection_, nullptr, place_.path.c_str(), interface_.c_str(), name.c_str(), values,
                                  nullptr);
}

void BusService::handleCall(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                            const char* /*interface*/, const char* method, GVariant* arguments,
                            GDBusMethodInvocation* invocation, void* service) {
    g_dbus_method_invocation_return_value(invocation, static_cast<BusService*>(service)->answer_(method, arguments));
}

}  // namespace ovrin
