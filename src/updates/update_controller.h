// Updates of the program: looks for one once a day and announces what it finds by a notification; shows the updater's
// window when the user asks.
#pragma once

#include <optional>
#include <string>

#include "base/date_time.h"
#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/task.h"
#include "platform/package_installer.h"
#include "platform/update_package.h"
#include "storage/defaults_store.h"
#include "updates/update_configuration.h"
#include "updates/update_source.h"
#include "updates/update_view_model.h"
#include "updates/update_window.h"
#include "windows/closable_window.h"

namespace ovrin {

class NotificationCenter;
class ToastPresenter;

// Main thread.
class UpdateController {
public:
    // All of it outlives the controller.
    struct Services {
        EventLoop& loop;
        UpdateSource::Services source;
        PackageInstaller& installer;
        DefaultsStore& state;
        ToastPresenter& toasts;
        NotificationCenter& notifications;
        Clock clock;
    };

    UpdateController(UpdateConfiguration configuration, Services services, MakeUpdateWindow makeWindow);
    UpdateController(const UpdateController&) = delete;
    UpdateController& operator=(const UpdateController&) = delete;

    // Whether the build knows where updates come from; fixed.
    bool isConfigured() const { return configuration_.isConfigured(); }

    // "版本 1.2（34）".
    std::string versionDisplay() const { return configuration_.versionDisplay(); }

    // The program has come up. Removes what earlier downloads have left, and looks for an update once a day from the
    // last time that the feed was read, of its own accord: silent about everything but an update that the user has not
    // chosen to skip, and without a window. Nothing when updates are not configured.
    void start();

    // The user asks: every outcome shows in the updater's window. A toast when updates are not configured.
    void checkForUpdates();

private:
    Task<void> checkDaily();
    Task<void> announceUpdate();
    Task<UpdateCheck> check();
    void announce(UpdateCheck found);
    void open(std::optional<UpdateCheck> found);
    // Until a check of its own accord is due; not positive when one is.
    EventLoop::Duration timeUntilCheck() const;

    UpdateConfiguration configuration_;
    Services services_;
    UpdateSource source_;
    MakeUpdateWindow makeWindow_;
    ClosableWindow<UpdateWindow, UpdateViewModel> window_;
    TaskSlot dailyCheck_;  // the last member: it ends before what it uses
};

}  // namespace ovrin
