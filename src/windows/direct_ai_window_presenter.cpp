#include "windows/direct_ai_window_presenter.h"

#include <memory>
#include <utility>

namespace ovrin {

namespace {

constexpr double minimumWidth = 480;

DirectAIPanel::Form formOf(bool isConversation) {
    if (!isConversation) {
        return {.size = DirectAIWindowPresenter::compactSize,
                .minimumSize = {minimumWidth, 140},
                .shadow = DirectAIPanel::Shadow::none};
    }
    return {.kind = DirectAIPanel::Kind::conversation,
            .size = DirectAIWindowPresenter::expandedSize,
            .minimumSize = {minimumWidth, 420},
            .shadow = DirectAIPanel::Shadow::inDarkAppearance};
}

}  // namespace

DirectAIWindowPresenter::DirectAIWindowPresenter(DirectAIViewModel::Services services, const AppConfig& config,
                                                 MakeDirectAIPanel makePanel)
    : services_(std::move(services)), config_(config), makePanel_(std::move(makePanel)), chat_(services_.loop) {}

void DirectAIWindowPresenter::show() {
    if (!chat_.isOpen()) {
        chat_.open([this](const Chat::Requests& requests) { return makeChat(requests); });
    }
    chat_.window().present();
}

DirectAIWindowPresenter::Chat::Content DirectAIWindowPresenter::makeChat(const Chat::Requests& requests) {
    closesWhenResigningKey_ = true;
    hasTurns_ = false;
    auto viewModel = std::make_shared<DirectAIViewModel>(config_.targetLanguage(), services_);
    const auto closeLater = [this, closing = requests.unlessClosed([this] { close(); })] {
        if (closesWhenResigningKey_ && chat_.window().isVisible()) services_.loop.post(closing);
    };
    auto panel = makePanel_(
        *viewModel, formOf(false),
        {.requestClose = requests.unlessClosed([this] { close(); }), .resignedKey = requests.unlessClosed(closeLater)});
    turns_ = viewModel->turns().onDidChange(
        [this, resizing = requests.unlessClosed([this] { resize(); })](const auto& turns) {
            if (hasTurns_ == !turns.empty()) return;
            hasTurns_ = !turns.empty();
            services_.loop.post(resizing);
        });
    return {std::move(viewModel), std::move(panel)};
}

void DirectAIWindowPresenter::resize() {
    closesWhenResigningKey_ = !hasTurns_;
    chat_.window().animateTo(formOf(hasTurns_));
}

void DirectAIWindowPresenter::close() {
    turns_ = {};
    if (const auto closed = chat_.close()) closed->viewModel->cancel();
}

}  // namespace ovrin
