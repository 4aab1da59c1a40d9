#include "windows/mini_popover_presenter.h"

#include <utility>

#include "windows/mini_popover_placement.h"

namespace ovrin {

// The window goes before the view model that it shows.
struct MiniPopoverPresenter::Card {
    MiniPopoverPresenter* owner = nullptr;  // none once it is closed
    std::unique_ptr<MiniPopoverViewModel> viewModel;
    std::unique_ptr<MiniPopoverWindow> window;
};

MiniPopoverPresenter::MiniPopoverPresenter(MiniPopoverViewModel::Services services, const AppConfig& config,
                                           DesktopLayout& desktop, MakeMiniPopoverWindow makeWindow)
    : services_(std::move(services)), config_(config), desktop_(desktop), makeWindow_(std::move(makeWindow)) {}

MiniPopoverPresenter::~MiniPopoverPresenter() = default;

void MiniPopoverPresenter::show(std::string sourceText) {
    close();
    const auto card = std::make_shared<Card>();
    card->owner = this;
    card->viewModel =
        std::make_unique<MiniPopoverViewModel>(std::move(sourceText), config_.targetLanguage(), services_);
    // A card that was closed but still handles its last event must not close its successor.
    card->window = makeWindow_(*card->viewModel, [asking = std::weak_ptr(card)] {
        if (const auto closing = asking.lock(); closing && closing->owner) closing->owner->close();
    });
    card_ = card;
    card->window->present(miniPopoverOrigin(desktop_.pointerLocation(), desktop_.screens()));
}

void MiniPopoverPresenter::close() {
    if (!card_) return;
    auto closed = std::exchange(card_, nullptr);
    closed->owner = nullptr;
    closed->viewModel->cancel();
    services_.loop.post([closed = std::move(closed)] {});
}

}  // namespace ovrin
