#include "platform/linux/qt/freedesktop_notification_center.h"

#include <utility>

#include "base/environment.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/qt/notification_service.h"

namespace ovrin {

FreedesktopNotificationCenter::FreedesktopNotificationCenter() {
    if (sessionBus(Environment::ofProcess()) != SessionBus::none) service_ = std::make_unique<NotificationService>();
}

FreedesktopNotificationCenter::~FreedesktopNotificationCenter() = default;

void FreedesktopNotificationCenter::add(Notification notification) {
    if (service_) service_->display(std::move(notification));
}

}  // namespace ovrin
