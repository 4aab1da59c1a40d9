#include "windows/mini_popover_presenter.h"

#include <memory>
#include <utility>

#include "windows/mini_popover_placement.h"

namespace ovrin {

MiniPopoverPresenter::MiniPopoverPresenter(MiniPopoverViewModel::Services services, const AppConfig& config,
                                           DesktopLayout& desktop, MakeMiniPopoverWindow makeWindow)
    : services_(std::move(services)),
      config_(config),
      desktop_(desktop),
      makeWindow_(std::move(makeWindow)),
      card_(services_.loop) {}

void MiniPopoverPresenter::show(std::string sourceText) {
    close();
    card_.open([&](const auto& requests) -> Card::Content {
        auto viewModel =
            std::make_shared<MiniPopoverViewModel>(std::move(sourceText), config_.targetLanguage(), services_);
        auto window = makeWindow_(*viewModel, requests.unlessClosed([this] { close(); }));
        return {std::move(viewModel), std::move(window)};
    });
    card_.window().present(miniPopoverOrigin(desktop_.pointerLocation(), desktop_.screens()));
}

void MiniPopoverPresenter::close() {
    if (const auto closed = card_.close()) closed->viewModel->cancel();
}

}  // namespace ovrin
