#include "windows/direct_ai_window_presenter.h"

#include <utility>
#include <vector>

namespace ovrin {

namespace {

constexpr double minimumWidth = 480;

DirectAIPanel::Form formOf(bool isConversation) {
    if (!isConversation) {
        return {.size = DirectAIWindowPresenter::compactSize,
                .minimumSize = {minimumWidth, 140},
                .shadow = DirectAIPanel::Shadow::none};
    }
    return {.size = DirectAIWindowPresenter::expandedSize,
            .minimumSize = {minimumWidth, 420},
            .shadow = DirectAIPanel::Shadow::inDarkAppearance};
}

}  // namespace

// The panel goes before the view model that it shows.
struct DirectAIWindowPresenter::Chat {
    DirectAIWindowPresenter* owner = nullptr;  // none once it is closed
    std::unique_ptr<DirectAIViewModel> viewModel;
    std::unique_ptr<DirectAIPanel> panel;
    bool closesWhenResigningKey = true;
    bool hasTurns = false;
    Subscription turns;
};

DirectAIWindowPresenter::DirectAIWindowPresenter(DirectAIViewModel::Services services, const AppConfig& config,
                                                 MakeDirectAIPanel makePanel)
    : services_(std::move(services)), config_(config), makePanel_(std::move(makePanel)) {}

DirectAIWindowPresenter::~DirectAIWindowPresenter() = default;

void DirectAIWindowPresenter::show() {
    if (!chat_) chat_ = makeChat();
    chat_->panel->present();
}

std::shared_ptr<DirectAIWindowPresenter::Chat> DirectAIWindowPresenter::makeChat() {
    auto made = std::make_shared<Chat>();
    made->owner = this;
    // What a chat asks for after it was closed is not meant for its successor.
    const auto unlessClosed = [asking = std::weak_ptr(made)](void (DirectAIWindowPresenter::*act)()) {
        return [asking, act] {
            if (const auto chat = asking.lock(); chat && chat->owner != nullptr) (chat->owner->*act)();
        };
    };
    made->viewModel = std::make_unique<DirectAIViewModel>(config_.targetLanguage(), services_);
    made->panel = makePanel_(*made->viewModel, formOf(false),
                             {.requestClose = unlessClosed(&DirectAIWindowPresenter::close),
                              .resignedKey = unlessClosed(&DirectAIWindowPresenter::closeUnlessConversing)});
    made->turns = made->viewModel->turns().onDidChange(
        [this, chat = made.get(), resize = unlessClosed(&DirectAIWindowPresenter::resize)](const auto& turns) {
            if (chat->hasTurns == !turns.empty()) return;
            chat->hasTurns = !turns.empty();
            services_.loop.post(resize);
        });
    return made;
}

void DirectAIWindowPresenter::resize() {
    chat_->closesWhenResigningKey = !chat_->hasTurns;
    chat_->panel->animateTo(formOf(chat_->hasTurns));
}

void DirectAIWindowPresenter::closeUnlessConversing() {
    if (!chat_->closesWhenResigningKey || !chat_->panel->isVisible()) return;
    services_.loop.post([closing = std::weak_ptr(chat_)] {
        if (const auto chat = closing.lock(); chat && chat->owner != nullptr) chat->owner->close();
    });
}

void DirectAIWindowPresenter::close() {
    if (!chat_) return;
    // Destroyed later: the panel may be handling the very event that closes it.
    auto closed = std::exchange(chat_, nullptr);
    closed->owner = nullptr;
    closed->turns = {};
    closed->viewModel->cancel();
    services_.loop.post([closed = std::move(closed)] {});
}

}  // namespace ovrin
