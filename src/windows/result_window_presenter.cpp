#include "windows/result_window_presenter.h"

#include <string>
#include <utility>

#include "base/text.h"
#include "storage/preferences.h"

namespace ovrin {

struct ResultWindowPresenter::OpenWindow {
    ResultWindowPresenter* owner = nullptr;           // none once it is closed
    std::shared_ptr<ResultPanelViewModel> viewModel;  // that it shows
    std::unique_ptr<ResultPanelWindow> window;
};

ResultWindowPresenter::ResultWindowPresenter(ResultPanelViewModel::Services services, const AppConfig& config,
                                             const DefaultsStore& defaults, MakeResultPanelWindow makeWindow)
    : services_(std::move(services)), config_(config), defaults_(defaults), makeWindow_(std::move(makeWindow)) {}

ResultWindowPresenter::~ResultWindowPresenter() = default;

void ResultWindowPresenter::show(OCRResult ocrResult, std::optional<Image> image, ResultPanelStart start) {
    std::string text = ocrResult.fullText();
    const auto viewModel = makeViewModel({.originalText = std::move(text),
                                          .translation = "",
                                          .ocrResult = std::move(ocrResult),
                                          .sourceImage = std::move(image),
                                          .targetLanguageSetting = config_.targetLanguage()});
    show(viewModel);
    if (start.translateImmediately) viewModel->translate();
    if (const auto action = start.initialAIAction) {
        viewModel->submit(std::string(defaultQuestion(*action)), *action);
    }
}

void ResultWindowPresenter::show(ResultPanelText text) {
    show(makeViewModel({.originalText = std::move(text.text),
                        .translation = std::move(text.translation),
                        .ocrResult = std::nullopt,
                        .sourceImage = std::nullopt,
                        .targetLanguageSetting = config_.targetLanguage()}));
}

void ResultWindowPresenter::showLatest() {
    if (latestViewModel_) show(latestViewModel_);
}

std::shared_ptr<ResultPanelViewModel> ResultWindowPresenter::makeViewModel(
    ResultPanelViewModel::Content content) const {
    return std::make_shared<ResultPanelViewModel>(std::move(content), services_);
}

void ResultWindowPresenter::show(std::shared_ptr<ResultPanelViewModel> viewModel) {
    auto previous = std::exchange(latestViewModel_, std::move(viewModel));
    if (previous && previous != latestViewModel_) {
        previous->cancel();
        services_.loop.post([previous = std::move(previous)] {});
    }
    if (!window_) window_ = makeWindow();

    ResultPanelWindow& window = *window_->window;
    if (window_->viewModel != latestViewModel_) {
        const bool isVisible = window.isVisible();
        window.setContent(latestViewModel_,
                          isVisible ? ResultPanelWindow::Entrance::fadesIn : ResultPanelWindow::Entrance::atOnce);
        window_->viewModel = latestViewModel_;
    }
    applyLevel();
    window.present();
}

void ResultWindowPresenter::applyLevel() {
    if (!window_) return;
    const bool isAlwaysOnTop = defaults_.boolean(preference::resultWindowAlwaysOnTop);
    window_->window->setLevel(isAlwaysOnTop ? ResultPanelWindow::Level::floating : ResultPanelWindow::Level::normal);
}

std::shared_ptr<ResultWindowPresenter::OpenWindow> ResultWindowPresenter::makeWindow() {
    auto made = std::make_shared<OpenWindow>();
    made->owner = this;
    // A window that was closed but still handles its last event must not close its successor.
    made->window = makeWindow_([asking = std::weak_ptr(made)] {
        if (const auto window = asking.lock(); window && window->owner) window->owner->close();
    });
    return made;
}

void ResultWindowPresenter::close() {
    if (latestViewModel_) {
        latestViewModel_->cancel();
        latestViewModel_->fallSilent();
    }
    if (!window_) return;
    auto closed = std::exchange(window_, nullptr);
    closed->owner = nullptr;
    services_.loop.post([closed = std::move(closed)] {});
}

bool ResultWindowPresenter::hasTranslationResult() const {
    return latestViewModel_ && !text::trimmed(latestViewModel_->translation().value()).empty();
}

}  // namespace ovrin
