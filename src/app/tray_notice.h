// Tells once that the desktop shows no icon of the program, which then is reached by shortcuts and commands alone.
#pragma once

#include "base/event_loop.h"
#include "base/published.h"
#include "platform/hot_keys.h"
#include "platform/notification_center.h"
#include "platform/status_item.h"

namespace ovrin {

// Main thread.
class TrayNotice {
public:
    // All of it outlives the notice.
    struct Surroundings {
        EventLoop& loop;
        StatusItem& statusItem;
        const HotKeys& hotKeys;
        NotificationCenter& notifications;
    };

    explicit TrayNotice(Surroundings surroundings);
    TrayNotice(const TrayNotice&) = delete;
    TrayNotice& operator=(const TrayNotice&) = delete;
    ~TrayNotice();

    // At the start. What counts is what the desktop says once its panels have had the time to come up; as long as it
    // says nothing, nothing is told.
    void start();

private:
    void judge(StatusItem::Visibility visibility);

    Surroundings surroundings_;
    EventLoop::TimerId patience_{};
    Subscription answer_;  // while it is missing
};

}  // namespace ovrin
