#include "windows/input_translate_presenter.h"

#include <utility>

namespace ovrin {

// The window goes before the view model that it shows.
struct InputTranslatePresenter::OpenWindow {
    InputTranslatePresenter* owner = nullptr;  // none once it is closed
    std::unique_ptr<InputTranslateViewModel> viewModel;
    std::unique_ptr<InputTranslateWindow> window;
};

InputTranslatePresenter::InputTranslatePresenter(InputTranslateViewModel::Services services, const AppConfig& config,
                                                 MakeInputTranslateWindow makeWindow)
    : services_(std::move(services)), config_(config), makeWindow_(std::move(makeWindow)) {}

InputTranslatePresenter::~InputTranslatePresenter() = default;

void InputTranslatePresenter::show(std::string initialText) {
    if (window_) return window_->window->present();
    const bool isTranslating = !initialText.empty();
    window_ = makeWindow(std::move(initialText));
    window_->window->present();
    if (isTranslating) window_->viewModel->translate();
}

std::shared_ptr<InputTranslatePresenter::OpenWindow> InputTranslatePresenter::makeWindow(std::string initialText) {
    auto made = std::make_shared<OpenWindow>();
    made->owner = this;
    made->viewModel =
        std::make_unique<InputTranslateViewModel>(std::move(initialText), config_.targetLanguage(), services_);
    // A window that was closed but still handles its last event must not close its successor.
    made->window = makeWindow_(*made->viewModel, [asking = std::weak_ptr(made)] {
        if (const auto window = asking.lock(); window && window->owner != nullptr) window->owner->close();
    });
    return made;
}

void InputTranslatePresenter::close() {
    auto closed = std::exchange(window_, nullptr);
    closed->owner = nullptr;
    // Destroyed later: the window may be handling the very event that closes it.
    services_.loop.post([closed = std::move(closed)] {});
}

}  // namespace ovrin
