#include "windows/result_window_presenter.h"

#include <string>
#include <utility>

#include "base/text.h"
#include "storage/preferences.h"

namespace ovrin {

ResultWindowPresenter::ResultWindowPresenter(ResultPanelViewModel::Services services, const AppConfig& config,
                                             const DefaultsStore& defaults, MakeResultPanelWindow makeWindow)
    : services_(std::move(services)),
      config_(config),
      defaults_(defaults),
      makeWindow_(std::move(makeWindow)),
      panel_(services_.loop) {}

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
    if (!panel_.isOpen()) {
        panel_.open([this](const auto& requests) -> Panel::Content {
            return {nullptr, makeWindow_(requests.unlessClosed([this] { close(); }))};
        });
    }

    ResultPanelWindow& window = panel_.window();
    if (panel_.viewModel() != latestViewModel_) {
        const bool isVisible = window.isVisible();
        window.setContent(latestViewModel_,
                          isVisible ? ResultPanelWindow::Entrance::fadesIn : ResultPanelWindow::Entrance::atOnce);
        panel_.setViewModel(latestViewModel_);
    }
    applyLevel();
    window.present();
}

void ResultWindowPresenter::applyLevel() {
    if (!panel_.isOpen()) return;
    const bool isAlwaysOnTop = defaults_.boolean(preference::resultWindowAlwaysOnTop);
    panel_.window().setLevel(isAlwaysOnTop ? ResultPanelWindow::Level::floating : ResultPanelWindow::Level::normal);
}

void ResultWindowPresenter::close() {
    if (latestViewModel_) {
        latestViewModel_->cancel();
        latestViewModel_->fallSilent();
    }
    panel_.close();
}

bool ResultWindowPresenter::hasTranslationResult() const {
    return latestViewModel_ && !text::trimmed(latestViewModel_->translation().value()).empty();
}

}  // namespace ovrin
