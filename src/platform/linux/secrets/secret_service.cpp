#include "platform/linux/secrets/secret_service.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <libsecret/secret.h>

#include "platform/linux/secrets/keychain_status.h"

namespace ovrin {
namespace {

constexpr const char* serviceName = "org.freedesktop.secrets";
constexpr const char* itemLabel = "Ovrin";  // what password managers list the items as

struct ObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using Object = std::unique_ptr<T, ObjectDeleter>;

struct ValueDeleter {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using Value = std::unique_ptr<SecretValue, ValueDeleter>;

struct TableDeleter {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
using Attributes = std::unique_ptr<GHashTable, TableDeleter>;

struct VariantDeleter {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Answer = std::unique_ptr<GVariant, VariantDeleter>;

// Where a call of the library puts its error.
class Failure {
public:
    Failure() = default;
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    ~Failure() { g_clear_error(&error_); }

    GError** out() {
        g_clear_error(&error_);
        return &error_;
    }

    bool isSet() const { return error_ != nullptr; }

    bool isTimeout() const {
        return is(G_IO_ERROR, G_IO_ERROR_TIMED_OUT) || is(G_IO_ERROR, G_IO_ERROR_CANCELLED) ||
               is(G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) || is(G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT);
    }

    KeychainStatus status() const {
        if (is(SECRET_ERROR, SECRET_ERROR_IS_LOCKED)) return keychainLocked;
        if (is(SECRET_ERROR, SECRET_ERROR_NO_SUCH_OBJECT)) return keychainItemNotFound;
        return isTimeout() ? keychainTimedOut : keychainRefused;
    }

private:
    bool is(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != FALSE; }

    GError* error_ = nullptr;
};

// The name of the schema is not part of the search: an item made by another tool with the same attributes is as good.
const SecretSchema& schema() {
    static const SecretSchema schema = [] {
        SecretSchema made{};
        made.name = "com.quel.ovrin.Secret";
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return schema;
}

Attributes attributesOf(const KeychainItem& item) {
    return Attributes(
        secret_attributes_build(&schema(), "service", item.service.c_str(), "account", item.account.c_str(), nullptr));
}

Value secretValue(const std::string& data) {
    return Value(secret_value_new(data.data(), static_cast<gssize>(data.size()), "text/plain"));
}

// An item of the service. Whether it is locked is noted here: the object hears of an unlocking only later.
struct FoundItem {
    Object<SecretItem> item;
    bool isLocked;
};
using Items = std::vector<FoundItem>;

bool isLocked(const FoundItem& found) {
    return found.isLocked;
}

// The event loop of one thread. The library's objects belong to the loop in which they were made and leave work in it
// behind, so each conversation has its own and empties it. (Its blocking calls make a loop each and leak with it.)
class PrivateLoop {
public:
    PrivateLoop() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
    PrivateLoop(const PrivateLoop&) = delete;
    PrivateLoop& operator=(const PrivateLoop&) = delete;
    ~PrivateLoop() {
        while (g_main_context_iteration(context_, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(context_);
        g_main_context_unref(context_);
    }

    // Begins an operation with the callback and its data, and runs until it is over.
    Object<GAsyncResult> run(const std::function<void(GAsyncReadyCallback, gpointer)>& begin) {
        Object<GAsyncResult> result;
        begin(
            [](GObject*, GAsyncResult* finished, gpointer data) {
                static_cast<Object<GAsyncResult>*>(data)->reset(static_cast<GAsyncResult*>(g_object_ref(finished)));
            },
            &result);
        while (result == nullptr) g_main_context_iteration(context_, TRUE);
        return result;
    }

private:
    GMainContext* context_;
};

}  // namespace

// One request, shared by the caller and the thread that does the work; whoever is last frees it.
class SecretService::Call {
public:
    Call() : cancellable_(g_cancellable_new()) {}

    GCancellable* cancellable() const { return cancellable_.get(); }

    void finish(KeychainMatch answer) {
        const std::lock_guard guard(lock_);
        answer_ = std::move(answer);
        changed_.notify_one();
    }

    // From now on the answer depends on a person.
    void askUser() {
        const std::lock_guard guard(lock_);
        asksUser_ = true;
        changed_.notify_one();
    }

    KeychainMatch wait(Patience patience, const std::stop_token& closing) {
        std::unique_lock guard(lock_);
        changed_.wait_for(guard, closing, patience.service, [&] { return answer_ || asksUser_; });
        if (asksUser_) changed_.wait_for(guard, closing, patience.user, [&] { return answer_.has_value(); });
        if (answer_) return std::move(*answer_);
        g_cancellable_cancel(cancellable_.get());
        return {.status = asksUser_ && !closing.stop_requested() ? keychainLocked : keychainTimedOut};
    }

private:
    Object<GCancellable> cancellable_;
    std::mutex lock_;
    std::condition_variable_any changed_;  // the kind that a stop wakes
    std::optional<KeychainMatch> answer_;
    bool asksUser_ = false;
};

// A conversation with the service over the process's connection to its session bus. That lives for as long as somebody
// uses it: here, for one request.
class SecretService::Session {
public:
    explicit Session(Call& call) : call_(call) {}

    // keychainSuccess, or why there is no conversation.
    KeychainStatus open() {
        Failure failure;
        const auto connected =
            loop_.run([&](auto ready, auto data) { g_bus_get(G_BUS_TYPE_SESSION, cancellable(), ready, data); });
        connection_.reset(g_bus_get_finish(connected.get(), failure.out()));
        if (connection_ == nullptr) return failure.isTimeout() ? keychainTimedOut : keychainUnavailable;
        // Else the process would be ended together with the bus.
        g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);

        // A service that runs need not be one that the bus could start.
        if (!isRunning() && askBus("StartServiceByName", g_variant_new("(su)", serviceName, 0U), failure) == nullptr) {
            return failure.isTimeout() ? keychainTimedOut : keychainUnavailable;
        }

        const auto opened = loop_.run([&](auto ready, auto data) {
            secret_service_open(SECRET_TYPE_SERVICE, serviceName, SECRET_SERVICE_OPEN_SESSION, cancellable(), ready,
                                data);
        });
        service_.reset(secret_service_open_finish(opened.get(), failure.out()));
        return service_ == nullptr ? failure.status() : keychainSuccess;
    }

    KeychainMatch find(const KeychainItem& item) {
        Items items;
        if (const KeychainStatus status = search(item, items); status != keychainSuccess) return {.status = status};
        if (std::all_of(items.begin(), items.end(), isLocked)) unlock(items);
        const auto open = std::find_if_not(items.begin(), items.end(), isLocked);
        if (open == items.end()) return {.status = keychainLocked};

        SecretItem* found = open->item.get();
        Failure failure;
        const auto loaded =
            loop_.run([&](auto ready, auto data) { secret_item_load_secret(found, cancellable(), ready, data); });
        if (!secret_item_load_secret_finish(found, loaded.get(), failure.out())) return {.status = failure.status()};
        const Value value(secret_item_get_secret(found));
        if (value == nullptr) return {.status = keychainLocked};
        gsize length = 0;
        const gchar* bytes = secret_value_get(value.get(), &length);
        return {.status = keychainSuccess, .data = std::string(bytes, length)};
    }

    KeychainStatus replace(const KeychainItem& item, const std::string& data) {
        const Value value = secretValue(data);
        return forEach(item, [&](SecretItem* found, GError** error) {
            const auto done = loop_.run(
                [&](auto ready, auto slot) { secret_item_set_secret(found, value.get(), cancellable(), ready, slot); });
            return secret_item_set_secret_finish(found, done.get(), error);
        });
    }

    KeychainStatus remove(const KeychainItem& item) {
        return forEach(item, [&](SecretItem* found, GError** error) {
            const auto done =
                loop_.run([&](auto ready, auto slot) { secret_item_delete(found, cancellable(), ready, slot); });
            return secret_item_delete_finish(found, done.get(), error);
        });
    }

    KeychainStatus store(const KeychainItem& item, const std::string& data) {
        // The library unlocks the default collection, or makes it where there is none; both ask the user.
        if (!isDefaultCollectionOpen()) call_.askUser();
        const Attributes attributes = attributesOf(item);
        const Value value = secretValue(data);
        const auto done = loop_.run([&](auto ready, auto slot) {
            secret_service_store(service_.get(), &schema(), attributes.get(), SECRET_COLLECTION_DEFAULT, itemLabel,
                                 value.get(), cancellable(), ready, slot);
        });
        Failure failure;
        const gboolean stored = secret_service_store_finish(service_.get(), done.get(), failure.out());
        return stored ? keychainSuccess : failure.status();
    }

private:
    GCancellable* cancellable() const { return call_.cancellable(); }

    // What the bus itself answers; none when it refuses.
    Answer askBus(const char* method, GVariant* arguments, Failure& failure) {
        return Answer(g_dbus_connection_call_sync(connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", method, arguments, nullptr,
                                                  G_DBUS_CALL_FLAGS_NONE, G_MAXINT, cancellable(), failure.out()));
    }

    bool isRunning() {
        Failure failure;
        const Answer answer = askBus("NameHasOwner", g_variant_new("(s)", serviceName), failure);
        gboolean hasOwner = FALSE;
        if (answer != nullptr) g_variant_get(answer.get(), "(b)", &hasOwner);
        return hasOwner != FALSE;
    }

    bool isDefaultCollectionOpen() {
        const auto found = loop_.run([&](auto ready, auto data) {
            secret_collection_for_alias(service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE,
                                        cancellable(), ready, data);
        });
        Failure failure;
        const Object<SecretCollection> collection(secret_collection_for_alias_finish(found.get(), failure.out()));
        return collection != nullptr && secret_collection_get_locked(collection.get()) == FALSE;
    }

    // Every item with these attributes, locked or not; keychainItemNotFound when there is none.
    KeychainStatus search(const KeychainItem& item, Items& items) {
        const Attributes attributes = attributesOf(item);
        const auto done = loop_.run([&](auto ready, auto data) {
            secret_service_search(service_.get(), &schema(), attributes.get(), SECRET_SEARCH_ALL, cancellable(), ready,
                                  data);
        });
        Failure failure;
        GList* found = secret_service_search_finish(service_.get(), done.get(), failure.out());
        for (GList* link = found; link != nullptr; link = link->next) {
            Object<SecretItem> one(static_cast<SecretItem*>(link->data));
            const bool isLocked = secret_item_get_locked(one.get()) != FALSE;
            items.push_back({std::move(one), isLocked});
        }
        g_list_free(found);
        if (!items.empty()) return keychainSuccess;
        return failure.isSet() ? failure.status() : keychainItemNotFound;
    }

    // Asks the user, who may refuse: what stays locked is seen from the items.
    void unlock(Items& items) {
        call_.askUser();
        GList* objects = nullptr;
        for (const auto& found : items) objects = g_list_prepend(objects, found.item.get());
        const auto done = loop_.run(
            [&](auto ready, auto data) { secret_service_unlock(service_.get(), objects, cancellable(), ready, data); });
        GList* unlocked = nullptr;
        Failure failure;
        secret_service_unlock_finish(service_.get(), done.get(), &unlocked, failure.out());
        for (auto& found : items) {
            if (g_list_find(unlocked, found.item.get()) != nullptr) found.isLocked = false;
        }
        g_list_free_full(unlocked, g_object_unref);
        g_list_free(objects);
    }

    KeychainStatus forEach(const KeychainItem& item, const std::function<gboolean(SecretItem*, GError**)>& action) {
        Items items;
        if (const KeychainStatus status = search(item, items); status != keychainSuccess) return status;
        if (std::any_of(items.begin(), items.end(), isLocked)) unlock(items);
        for (const auto& found : items) {
            Failure failure;
            if (found.isLocked) return keychainLocked;
            if (!action(found.item.get(), failure.out())) return failure.status();
        }
        return keychainSuccess;
    }

    Call& call_;
    PrivateLoop loop_;
    Object<GDBusConnection> connection_;
    Object<::SecretService> service_;
};

SecretService::SecretService(SessionBus bus, Patience patience, std::stop_token closing)
    : bus_(bus), patience_(patience), closing_(std::move(closing)) {}

KeychainMatch SecretService::find(const KeychainItem& item) const {
    return perform([item](Session& session) { return session.find(item); });
}

KeychainStatus SecretService::replace(const KeychainItem& item, std::string_view data) const {
    return perform([item, data = std::string(data)](Session& session) {
               return KeychainMatch{.status = session.replace(item, data)};
           })
        .status;
}

KeychainStatus SecretService::store(const KeychainItem& item, std::string_view data) const {
    return perform([item, data = std::string(data)](Session& session) {
               return KeychainMatch{.status = session.store(item, data)};
           })
        .status;
}

KeychainStatus SecretService::remove(const KeychainItem& item) const {
    return perform([item](Session& session) { return KeychainMatch{.status = session.remove(item)}; }).status;
}

bool SecretService::isAvailable() const {
    return perform([](Session& /*opened*/) { return KeychainMatch(); }).status != keychainUnavailable;
}

KeychainMatch SecretService::converse(Call& call, const Operation& operation) {
    Session session(call);
    const KeychainStatus opened = session.open();
    if (opened != keychainSuccess) return {.status = opened};
    return operation(session);
}

KeychainMatch SecretService::perform(Operation operation) const {
    if (bus_ == SessionBus::none) return {.status = keychainUnavailable};
    if (closing_.stop_requested()) return {.status = keychainTimedOut};
    const auto call = std::make_shared<Call>();
    std::thread([call, operation = std::move(operation)] { call->finish(converse(*call, operation)); }).detach();
    return call->wait(patience_, closing_);
}

}  // namespace ovrin
