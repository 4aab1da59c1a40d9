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
      card_(services_.loop),
      presentation_(services_.loop) {}

void MiniPopoverPresenter::show(std::string sourceText) {
    close();
    card_.open([&](const auto& requests) -> Card::Content {
        auto viewModel =
            std::make_shared<MiniPopoverViewModel>(std::move(sourceText), config_.targetLanguage(), services_);
        auto window = makeWindow_(*viewModel, requests.unlessClosed([this] { close(); }));
        return {std::move(viewModel), std::move(window)};
    });
    presentation_.replace(present());
}

Task<void> MiniPopoverPresenter::present() {
    const WindowPoint pointer = co_await desktop_.pointerLocation();
    card_.window().present(miniPopoverOrigin(pointer, desktop_.screens()));
}

void MiniPopoverPresenter::close() {
    presentation_.cancel();
    if (const auto closed = card_.close()) closed->viewModel->cancel();
}

}  // namespace ovrin
