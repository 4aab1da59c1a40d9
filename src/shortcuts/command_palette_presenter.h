// Opens the one command palette, closes it, and toggles it from its shortcut.
#pragma once

#include <functional>
#include <memory>

#include "base/event_loop.h"
#include "base/running_task.h"
#include "base/text.h"
#include "platform/desktop_layout.h"
#include "shortcuts/assistant_actions.h"
#include "shortcuts/command_palette_view_model.h"
#include "shortcuts/registry.h"
#include "windows/closable_window.h"

namespace ovrin {

// The floating window of the palette.
class CommandPalettePanel {
public:
    virtual ~CommandPalettePanel() = default;

    // Centred in this part of a display (anywhere when it is empty), in front and with the keyboard.
    virtual void present(const WindowRect& room) = 0;
    virtual bool isVisible() const = 0;
    virtual void orderOut() = 0;
};

// Makes a panel that shows the view model and calls requestClose on Escape, on the close button and when it stops being
// the key window while visible. Both arguments outlive the panel.
using MakeCommandPalettePanel = std::function<std::unique_ptr<CommandPalettePanel>(CommandPaletteViewModel& viewModel,
                                                                                   std::function<void()> requestClose)>;

// Main thread. What is handed over by reference outlives it.
class CommandPalettePresenter {
public:
    CommandPalettePresenter(AssistantActions& actions, const KeyboardShortcuts::Registry& registry,
                            DesktopLayout& desktop, MakeCommandPalettePanel makePanel, EventLoop& mainLoop,
                            text::CaseRules caseRules);
    CommandPalettePresenter(const CommandPalettePresenter&) = delete;
    CommandPalettePresenter& operator=(const CommandPalettePresenter&) = delete;

    // Opens a fresh palette on the display that the pointer is on, or closes the one that is visible.
    void show();

    void close();

private:
    using Palette = ClosableWindow<CommandPalettePanel, CommandPaletteViewModel>;

    Task<void> present();

    AssistantActions& actions_;
    const KeyboardShortcuts::Registry& registry_;
    DesktopLayout& desktop_;
    MakeCommandPalettePanel makePanel_;
    text::CaseRules caseRules_;
    Palette palette_;
    TaskSlot presentation_;  // while the desktop is asked for the pointer's place
};

}  // namespace ovrin
