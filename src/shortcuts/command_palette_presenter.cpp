#include "shortcuts/command_palette_presenter.h"

#include <utility>

namespace ovrin {

// The panel goes before the view model that it shows.
struct CommandPalettePresenter::Palette {
    std::unique_ptr<CommandPaletteViewModel> viewModel;
    std::unique_ptr<CommandPalettePanel> panel;
};

CommandPalettePresenter::CommandPalettePresenter(AssistantActions& actions, const KeyboardShortcuts::Registry& registry,
                                                 MakeCommandPalettePanel makePanel, EventLoop& mainLoop,
                                                 text::CaseRules caseRules)
    : actions_(actions),
      registry_(registry),
      makePanel_(std::move(makePanel)),
      mainLoop_(mainLoop),
      caseRules_(caseRules) {}

CommandPalettePresenter::~CommandPalettePresenter() = default;

void CommandPalettePresenter::show() {
    const bool wasVisible = palette_ && palette_->panel->isVisible();
    close();
    if (wasVisible) return;

    const auto palette = std::make_shared<Palette>();
    // A palette that was closed but still handles its last event must not close its successor.
    const auto requestClose = [this, alive = std::weak_ptr(isAlive_), asking = std::weak_ptr(palette)] {
        if (!alive.expired() && palette_ == asking.lock()) close();
    };
    palette->viewModel = std::make_unique<CommandPaletteViewModel>(CommandItem::defaultItems(actions_, registry_),
                                                                   requestClose, caseRules_);
    palette->panel = makePanel_(*palette->viewModel, requestClose);
    palette_ = palette;
    palette->panel->present();
}

void CommandPalettePresenter::close() {
    if (!palette_) return;
    // Forgotten before it is hidden: hiding takes the keyboard from it, which asks to close it again. Destroyed later:
    // the panel may be handling the very key that closes it.
    auto closed = std::exchange(palette_, nullptr);
    closed->panel->orderOut();
    mainLoop_.post([closed = std::move(closed)] {});
}

}  // namespace ovrin
