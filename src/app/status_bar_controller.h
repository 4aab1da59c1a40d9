// The icon in the status area: dimmed while a capture runs, a click brings the last translation back or opens the menu
// through which everything is reached.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/event_loop.h"
#include "base/published.h"
#include "platform/status_item.h"
#include "settings/application_actions.h"
#include "shortcuts/action.h"
#include "shortcuts/assistant_actions.h"
#include "shortcuts/registry.h"

namespace ovrin {

// Main thread.
class StatusBarController {
public:
    // All of it outlives the controller.
    struct Surroundings {
        EventLoop& loop;
        StatusItem& statusItem;
        AssistantActions& actions;
        ApplicationActions& application;
        KeyboardShortcuts::Registry& registry;
        const Published<bool>& isCapturing;
        const Published<std::optional<std::string>>& activityText;
        std::function<bool()> isModelReady;          // asked whenever the menu opens
        std::function<bool()> hasTranslationResult;  // the latest panel holds a translation
    };

    explicit StatusBarController(Surroundings surroundings);
    StatusBarController(const StatusBarController&) = delete;
    StatusBarController& operator=(const StatusBarController&) = delete;
    // Hears nothing of the item any more. Shortcuts that an open menu has suspended work again.
    ~StatusBarController();

    // As it is at this moment; built anew for every opening. Its actions don't need the controller.
    Menu makeMenu() const;

    void showMenu();

    // The title of the item that has the combination for itself. Those of global shortcuts, which the menu only hints
    // at, belong to no item.
    std::optional<std::string> itemUsing(const KeyboardShortcuts::Shortcut& shortcut,
                                         const KeyboardLayout& layout) const;

private:
    void configureButton();
    void observeActivity();
    void handleLeftClick();
    void menuWillOpen();
    void hostMenuWillOpen();
    void hostMenuDidOpen();
    void suspendFor(EventLoop::Duration limit);
    void menuDidClose();

    enum class Symbol : std::uint8_t { shown, none };  // lines of submenus have none

    MenuItem item(OvShortcut shortcut, Symbol symbol = Symbol::shown) const;
    MenuItem item(ApplicationCommand command) const;
    Menu selectionMenu() const;
    Menu clipboardMenu() const;
    std::optional<MenuItem> statusRow() const;

    Surroundings surroundings_;
    bool isMenuOpen_ = false;
    bool isHostMenuOpen_ = false;                      // as the host told
    std::optional<EventLoop::TimerId> hostMenuLimit_;  // while a host's menu may be open
    Subscription leftClick_;
    Subscription capturing_;
};

}  // namespace ovrin
