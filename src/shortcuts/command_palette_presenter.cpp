#include "shortcuts/command_palette_presenter.h"

#include <utility>

namespace ovrin {

CommandPalettePresenter::CommandPalettePresenter(AssistantActions& actions, const KeyboardShortcuts::Registry& registry,
                                                 DesktopLayout& desktop, MakeCommandPalettePanel makePanel,
                                                 EventLoop& mainLoop, text::CaseRules caseRules)
    : actions_(actions),
      registry_(registry),
      desktop_(desktop),
      makePanel_(std::move(makePanel)),
      caseRules_(caseRules),
      palette_(mainLoop),
      presentation_(mainLoop) {}

void CommandPalettePresenter::show() {
    const bool wasVisible = presentation_.isRunning() || (palette_.isOpen() && palette_.window().isVisible());
    close();
    if (wasVisible) return;

    palette_.open([this](const auto& requests) -> Palette::Content {
        const auto requestClose = requests.unlessClosed([this] { close(); });
        auto viewModel = std::make_shared<CommandPaletteViewModel>(CommandItem::defaultItems(actions_, registry_),
                                                                   requestClose, caseRules_);
        auto panel = makePanel_(*viewModel, requestClose);
        return {std::move(viewModel), std::move(panel)};
    });
    presentation_.replace(present());
}

Task<void> CommandPalettePresenter::present() {
    const WindowPoint pointer = co_await desktop_.pointerLocation();
    palette_.window().present(visibleFrameAt(pointer, desktop_.screens()));
}

void CommandPalettePresenter::close() {
    presentation_.cancel();
    // Forgotten before it is hidden: hiding takes the keyboard from it, which asks to close it again.
    if (const auto closed = palette_.close()) closed->window->orderOut();
}

}  // namespace ovrin
