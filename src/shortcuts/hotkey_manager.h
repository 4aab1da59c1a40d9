// Binds the thirteen global shortcuts to what they do, after moving users of older defaults onto the current ones.
#pragma once

#include <memory>

#include "base/event_loop.h"
#include "shortcuts/assistant_actions.h"
#include "shortcuts/registry.h"
#include "storage/defaults_store.h"

namespace ovrin {

// Main thread.
class HotkeyManager {
public:
    HotkeyManager(KeyboardShortcuts::Registry& registry, DefaultsStore& defaults, EventLoop& mainLoop);
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;
    // Actions of keys pressed before don't run afterwards; the registry must still exist.
    ~HotkeyManager();

    // Once at start-up. What can't be stored is left for the next start. A pressed shortcut runs its action on the main
    // loop after its key event has been handled. The actions must outlive the manager.
    void bindAll(AssistantActions& actions);

private:
    void migrateRetiredDefaultShortcutsIfNeeded();
    void migratePrimaryDefaultShortcutsIfNeeded();
    void bind(OvShortcut shortcut, AssistantActions& actions);

    KeyboardShortcuts::Registry& registry_;
    DefaultsStore& defaults_;
    EventLoop& mainLoop_;
    std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
};

}  // namespace ovrin
