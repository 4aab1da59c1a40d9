// A notification daemon that shows nothing and remembers everything. It lives on a private bus as long as the object,
// on a thread of its own; its end is that of a daemon that crashes.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gio/gio.h>

namespace ovrin {

class NotificationRecorder {
public:
    // Returns once notifications can be sent. Throws Error when there is no bus or another daemon serves it.
    explicit NotificationRecorder(const std::string& busAddress);
    NotificationRecorder(const NotificationRecorder&) = delete;
    NotificationRecorder& operator=(const NotificationRecorder&) = delete;
    ~NotificationRecorder();

    struct Notification {
        std::string program;
        std::string title;
        std::string body;
    };
    // In the order in which they came. Any thread.
    std::vector<Notification> notifications() const;

private:
    void serve(const std::string& busAddress);
    static void handleCall(GDBusConnection* connection, const char* sender, const char* path, const char* interface,
                           const char* method, GVariant* arguments, GDBusMethodInvocation* invocation, void* recorder);

    mutable std::mutex mutex_;
    std::vector<Notification> notifications_;  // guarded by the mutex
    std::unique_ptr<GMainContext, decltype(&g_main_context_unref)> context_;
    std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop_;
    std::thread thread_;
};

}  // namespace ovrin
