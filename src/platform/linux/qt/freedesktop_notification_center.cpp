#include "platform/linux/qt/freedesktop_notification_center.h"

#include <utility>

#include "platform/linux/qt/notification_service.h"

namespace ovrin {

FreedesktopNotificationCenter::FreedesktopNotificationCenter() : service_(std::make_unique<NotificationService>()) {}

FreedesktopNotificationCenter::~FreedesktopNotificationCenter() = default;

void FreedesktopNotificationCenter::add(Notification notification) {
    service_->display(std::move(notification));
}

}  // namespace ovrin
