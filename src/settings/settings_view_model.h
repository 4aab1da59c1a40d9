// What the settings window shows and does: its pages, and the values of the settings store.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "platform/capability.h"
#include "settings/local_service_finder.h"
#include "settings/settings_section.h"
#include "settings/settings_store.h"

namespace ovrin {

class ApplicationActions;
class HistoryStore;
class SimulateKeyboard;
class WorkerExecutor;

// Main thread.
class SettingsViewModel {
public:
    // All of it outlives the view model.
    struct Services {
        SettingsStore::Surroundings store;
        SimulateKeyboard& keyboard;
        InspectSession inspectSession;  // asked on the worker
        WorkerExecutor& inspectionWorker;
        HistoryStore& history;
        ApplicationActions& application;  // updates
        std::string version;              // of the running program: 版本 1.2（34）
    };

    // The row 辅助功能 of the advanced page.
    struct Accessibility {
        bool isTrusted = false;  // success, else warning
        std::string detail = {};
        std::string pill = {};

        bool operator==(const Accessibility&) const = default;
    };

    // The pill and text of the connection state.
    struct ConnectionStatus {
        enum class Kind : std::uint8_t { neutral, active, success, error };

        Kind kind = Kind::neutral;
        std::string pill = {};     // the state in a word or two
        std::string message = {};  // the failure; empty in the other states, which the pill says in full

        bool operator==(const ConnectionStatus&) const = default;
    };

    explicit SettingsViewModel(Services services);
    ~SettingsViewModel() = default;
    SettingsViewModel(const SettingsViewModel&) = delete;
    SettingsViewModel& operator=(const SettingsViewModel&) = delete;

    SettingsStore& store() { return store_; }

    // The page on view. movesForward: which way the page came, set before the selection changes.
    const Published<SettingsSection>& selection() const { return selection_; }
    bool movesForward() const { return movesForward_; }
    void select(SettingsSection section);
    // Round and round: Control+Tab and Control+Shift+Tab.
    void selectNext();
    void selectPrevious();

    const Published<Accessibility>& accessibility() const { return accessibility_; }
    // What the session can do, a row each on the advanced page, and read anew when that comes up; empty until it is
    // known.
    const Published<std::vector<Capability>>& capabilities() const { return capabilities_; }
    void advancedPageAppeared() { inspection_.replace(inspect()); }

    const Published<ConnectionStatus>& connectionStatus() const { return connectionStatus_; }

    // The window comes up, or the program comes to the front: what may have been changed by other means is read anew.
    void refresh();

    // The row 本机服务 of the service page. Looked for when the page comes up, and again when the window does.
    const Published<std::optional<std::vector<LocalService>>>& localServices() const { return localServices_.found(); }
    void servicePageAppeared() { localServices_.look(); }
    void servicePageDisappeared() { localServices_.stop(); }

    // After the user's confirmation.
    void clearHistory();

    // About page.
    const std::string& version() const { return services_.version; }
    bool isUpdateConfigured() const;
    void checkForUpdates();

private:
    Task<void> inspect();

    Services services_;
    SettingsStore store_;
    LocalServiceFinder localServices_;
    Published<SettingsSection> selection_{SettingsSection::general};
    bool movesForward_ = false;
    Published<Accessibility> accessibility_;
    Published<std::vector<Capability>> capabilities_;
    Published<ConnectionStatus> connectionStatus_;
    Subscription connectionState_;
    TaskSlot inspection_;
};

}  // namespace ovrin
