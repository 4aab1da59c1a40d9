// The updater without its window: looks for an update, downloads it, and hands it over.
//
// Main thread. Destroying the model ends its work; it must not be destroyed from inside one of its notifications. An
// installation that the desktop has begun goes on.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "platform/package_installer.h"
#include "storage/defaults_store.h"
#include "updates/update_source.h"

namespace ovrin {

class ToastPresenter;

enum class UpdatePhase : std::uint8_t {
    checking,
    upToDate,
    available,
    downloading,
    verifying,
    handingOver,  // verified, and with the desktop's installer
    handedOver,
    failed,
};

class UpdateViewModel {
public:
    struct Status {
        UpdatePhase phase = UpdatePhase::checking;
        std::string title;           // what it is, in a few words
        std::string message;         // one or two sentences
        std::uint64_t received = 0;  // bytes, while downloading

        bool operator==(const Status&) const = default;
    };

    // The references outlive the model.
    struct Services {
        EventLoop& loop;
        const UpdateSource& source;
        PackageInstaller& installer;
        DefaultsStore& state;
        ToastPresenter& toasts;
        std::string versionDisplay;                // of the running program
        std::function<Task<UpdateCheck>()> check;  // asks the source, and remembers that it did
    };

    // Checks at once, unless there is something found already to be shown.
    UpdateViewModel(Services services, std::optional<UpdateCheck> found);
    UpdateViewModel(const UpdateViewModel&) = delete;
    UpdateViewModel& operator=(const UpdateViewModel&) = delete;

    const Published<Status>& status() const { return status_; }

    // From `available` on, until another check begins.
    const std::optional<UpdateItem>& update() const { return check_.update; }
    // "2026年11月24日 · 48.2 MB"; what is unknown is left out.
    std::string updateDetails() const;
    // Whether this copy of the program can be replaced by a package; otherwise the user is offered the item's page.
    bool canInstall() const { return check_.machine.ownsProgram; }
    bool hasPage() const { return check_.update && !check_.update->page.empty(); }

    // Begins a new check, unless the model is at work.
    void checkAgain();
    // Downloads the update and hands it over. Nothing without one that can be installed.
    void install();
    // Ends the download; the update is on offer again.
    void cancelDownload();
    // After a failure: does again what failed.
    void retry();
    // This version is not announced any more.
    void skipVersion();
    void openPage();

private:
    Task<void> lookForUpdate();
    Task<void> downloadAndHandOver(UpdateItem item);
    Task<std::shared_ptr<UpdatePackage>> downloaded(UpdateItem item);
    void show(UpdatePhase phase, std::string title, std::string message, std::uint64_t received = 0);
    void showCheck(UpdateCheck check);
    void showOffer();
    void showHandOver(PackageHandOver handOver);
    void showFailure(std::string title, const std::exception_ptr& failure);
    bool isAtWork() const;

    Services services_;
    Published<Status> status_;
    UpdateCheck check_;
    TaskSlot task_;  // the last member: it ends before what it uses
};

}  // namespace ovrin
