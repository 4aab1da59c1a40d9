#include "desktop/notification_recorder.h"

#include <cstdint>

namespace ovrin {
namespace {

constexpr const char* description = R"(<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
    <arg type="s" direction="out"/><arg type="s" direction="out"/></method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
  <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  </interface></node>)";

}  // namespace

NotificationRecorder::NotificationRecorder(const std::string& busAddress)
    : service_(busAddress,
               {.name = "org.freedesktop.Notifications",
                .path = "/org/freedesktop/Notifications",
                .description = description},
               [this](const std::string& method, GVariant* arguments) { return answer(method, arguments); }) {}

std::vector<NotificationRecorder::Notification> NotificationRecorder::notifications() const {
    const std::lock_guard lock(mutex_);
    return notifications_;
}

// The numbers that the daemon gives them count from 1.
void NotificationRecorder::activate(std::size_t number) const {
    service_.emitSignal("ActionInvoked", g_variant_new("(us)", static_cast<std::uint32_t>(number + 1), "default"));
}

GVariant* NotificationRecorder::answer(const std::string& method, GVariant* arguments) {
    if (method == "Notify") {
        const char *program = nullptr, *title = nullptr, *body = nullptr;
        g_variant_get_child(arguments, 0, "&s", &program);
        g_variant_get_child(arguments, 3, "&s", &title);
        g_variant_get_child(arguments, 4, "&s", &body);
        const std::lock_guard lock(mutex_);
        notifications_.push_back({.program = program, .title = title, .body = body});
        return g_variant_new("(u)", static_cast<std::uint32_t>(notifications_.size()));
    }
    if (method == "GetCapabilities") {
        const char* const capabilities[] = {"actions", "body", nullptr};
        return g_variant_new("(^as)", capabilities);
    }
    if (method == "GetServerInformation") return g_variant_new("(ssss)", "recorder", "Ovrin", "1", "1.2");
    return nullptr;
}

}  // namespace ovrin
