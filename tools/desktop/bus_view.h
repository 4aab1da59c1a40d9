// A look at a session bus from outside of the programs on it: who is there, and calls to them. One thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gio/gio.h>

namespace ovrin {

struct FreeVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, FreeVariant>;

class BusView {
public:
    // Throws Error when there is no bus at the address.
    explicit BusView(const std::string& address);

    bool hasOwner(const std::string& name) const;
    std::vector<std::string> names() const;

    struct Method {
        std::string destination;
        std::string path;
        std::string interface;
        std::string name;
    };
    // arguments: a tuple, which the call takes over when it is floating; null for none. Throws Error with the bus's own
    // words when the call fails.
    Variant call(const Method& method, GVariant* arguments = nullptr) const;
    // The value itself, out of its wrapping.
    Variant property(const Method& property) const;

    GDBusConnection* connection() const { return connection_.get(); }

private:
    struct Close {
        void operator()(GDBusConnection* connection) const {
            g_dbus_connection_close_sync(connection, nullptr, nullptr);
            g_object_unref(connection);
        }
    };
    std::unique_ptr<GDBusConnection, Close> connection_;
};

}  // namespace ovrin
