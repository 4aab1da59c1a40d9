#include "windows/input_translate_presenter.h"

#include <memory>
#include <utility>

namespace ovrin {

InputTranslatePresenter::InputTranslatePresenter(InputTranslateViewModel::Services services, const AppConfig& config,
                                                 MakeInputTranslateWindow makeWindow)
    : services_(std::move(services)), config_(config), makeWindow_(std::move(makeWindow)), open_(services_.loop) {}

void InputTranslatePresenter::show(const std::string& initialText) {
    if (open_.isOpen()) return open_.window().present();
    open_.open([&](const auto& requests) -> Open::Content {
        auto viewModel = std::make_shared<InputTranslateViewModel>(initialText, config_.targetLanguage(), services_);
        auto window = makeWindow_(*viewModel, requests.unlessClosed([this] { open_.close(); }));
        return {std::move(viewModel), std::move(window)};
    });
    open_.window().present();
    if (!initialText.empty()) open_.viewModel()->translate();
}

}  // namespace ovrin
