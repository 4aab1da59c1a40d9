// A service on a private bus that a test or a demonstration plays: one object with one interface. It lives as long as
// the object, on a thread of its own; its end is that of a service that crashes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <gio/gio.h>

namespace ovrin {

class BusService {
public:
    struct Place {
        std::string name;         // on the bus
        std::string path;         // of the object
        std::string description;  // of its interface, as introspection data
    };
    // Answers a call with the values to return, a tuple, or with null for none. Called on the service's thread.
    using Answer = std::function<GVariant*(const std::string& method, GVariant* arguments)>;

    // Returns once the service can be called. Throws Error when there is no bus or the name has an owner already.
    BusService(const std::string& busAddress, Place place, Answer answer);
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;
    ~BusService();

    // Tells everybody; takes over the values, a tuple. Any thread.
    void emitSignal(const std::string& name, GVariant* values) const;

private:
    void serve(const std::string& busAddress, const std::function<void()>& isServing);
    static void handleCall(GDBusConnection* connection, const char* sender, const char* path, const char* interface,
                           const char* method, GVariant* arguments, GDBusMethodInvocation* invocation, void* service);

    const Place place_;
    const Answer answer_;
    std::string interface_;
    GDBusConnection* connection_ = nullptr;  // of the thread, which keeps it until its end
    std::unique_ptr<GMainContext, decltype(&g_main_context_unref)> context_;
    std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop_;
    std::thread thread_;
};

}  // namespace ovrin
