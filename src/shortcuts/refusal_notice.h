// Tells at start-up, in one notification, which global shortcuts the desktop refuses. What was told once is not told
// again at the next start; a refusal that went away and came back is.
#pragma once

#include <functional>
#include <vector>

#include "base/published.h"
#include "platform/notification_center.h"
#include "shortcuts/ov_shortcut.h"
#include "shortcuts/registry.h"
#include "storage/defaults_store.h"

namespace ovrin {

// Main thread.
class RefusalNotice {
public:
    // All of it outlives the notice.
    struct Surroundings {
        KeyboardShortcuts::Registry& registry;
        NotificationCenter& notifications;
        DefaultsStore& state;                 // remembers what was told
        std::function<void()> showShortcuts;  // the notification was activated
    };

    explicit RefusalNotice(Surroundings surroundings);

    // Once the shortcuts are bound. Waits until the desktop has answered about every one.
    void tell();

private:
    bool isAnswerMissing();
    std::vector<OvShortcut> refused();
    void tellAnswers();

    Surroundings surroundings_;
    std::vector<Subscription> answers_;  // while one is missing
};

}  // namespace ovrin
