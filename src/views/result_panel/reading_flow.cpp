#include "views/result_panel/reading_flow.h"

#include <QDesktopServices>
#include <QVBoxLayout>

#include "views/components/ov_error_note.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "views/result_panel/conversation_turn_view.h"
#include "views/result_panel/result_card.h"

namespace ovrin {

using Progress = OVStreamingText::Progress;

namespace {

constexpr int widest = 700;  // points, of the content
constexpr int margin = 16;
constexpr int spacing = 16;

Progress progress(bool isStreaming) {
    return isStreaming ? Progress::streaming : Progress::finished;
}

}  // namespace

ReadingFlow::ReadingFlow(ViewEnvironment& environment, ResultPanelViewModel& viewModel, OVScrollArea& area)
    : OVWidget(environment),
      viewModel_(viewModel),
      area_(area),
      translationError_(new OVErrorNote(environment)),
      conversationError_(new OVErrorNote(environment)) {
    auto* card = new ResultCard(environment, viewModel);
    makeReadable(card->translation());
    makeReadable(card->original());

    // The column is centred in what is wider than it may be.
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(margin, 2, margin, margin);
    auto* content = new QWidget;
    content->setMaximumWidth(widest);
    row->addWidget(content);
    column_ = new QVBoxLayout(content);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(spacing);
    column_->addWidget(card);
    column_->addWidget(translationError_);
    turns_ = new QVBoxLayout;
    turns_->setSpacing(spacing + 4);
    column_->addLayout(turns_);
    column_->addWidget(conversationError_);
    column_->addStretch();
    bind();
    showFirstTurn();
    showFollowUps(viewModel.followUps().value());
    showError();
}

void ReadingFlow::bind() {
    const auto showingFirst = [this](const auto& /*value*/) { showFirstTurn(); };
    subscriptions_.push_back(viewModel_.selectedAIAction().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.initialQuestion().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.aiOutput().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.isAIStreaming().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.followUps().onDidChange(
        [this](const std::vector<FollowUpMessage>& followUps) { showFollowUps(followUps); }));
    subscriptions_.push_back(viewModel_.errorMessage().onDidChange([this](const std::optional<std::string>& message) {
        showError();
        if (message) area_.reveal(translationError_->isHidden() ? *conversationError_ : *translationError_);
    }));
}

void ReadingFlow::showError() {
    const bool isOfTranslation = viewModel_.failed() == ResultPanelViewModel::Failed::translation;
    const std::optional<std::string>& message = viewModel_.errorMessage().value();
    translationError_->setMessage(isOfTranslation ? message : std::nullopt);
    conversationError_->setMessage(isOfTranslation ? std::nullopt : message);
}

void ReadingFlow::showFirstTurn() {
    const bool isAsked = viewModel_.selectedAIAction().value().has_value();
    const std::string& question = viewModel_.initialQuestion().value();
    if (firstTurn_ != nullptr && (!isAsked || question != firstQuestion_)) {
        delete firstTurn_;
        firstTurn_ = nullptr;
    }
    if (!isAsked || question.empty()) return;
    if (firstTurn_ == nullptr) {
        firstQuestion_ = question;
        firstTurn_ = addTurn(question);
    }
    firstTurn_->setAnswer(viewModel_.aiOutput().value(), progress(viewModel_.isAIStreaming().value()));
}

void ReadingFlow::showFollowUps(const std::vector<FollowUpMessage>& followUps) {
    const auto isShown = [](const FollowUp& shown, const FollowUpMessage& message) { return shown.id == message.id; };
    const auto firstOther = std::ranges::mismatch(followUps_, followUps, isShown).in1;
    std::for_each(firstOther, followUps_.end(), [](const FollowUp& gone) { delete gone.view; });
    followUps_.erase(firstOther, followUps_.end());
    for (std::size_t i = 0; i < followUps.size(); ++i) {
        const FollowUpMessage& message = followUps[i];
        if (i == followUps_.size()) followUps_.push_back({message.id, addTurn(message.question)});
        followUps_[i].view->setAnswer(message.answer, progress(message.isStreaming));
    }
}

ConversationTurnView* ReadingFlow::addTurn(std::string_view question) {
    auto* turn = new ConversationTurnView(environment(), question, viewModel_.replyLanguage());
    makeReadable(turn->question());
    makeReadable(turn->answer());
    turns_->addWidget(turn);
    return turn;
}

void ReadingFlow::makeReadable(OVStreamingText& text) {
    area_.keepInSight(text);
    connect(&text, &OVStreamingText::linkActivated, this, [](const QUrl& target) {
        // An answer may name anything; only what a browser or a mail program opens is safe to follow.
        const QString scheme = target.scheme();
        if (scheme == "https" || scheme == "http" || scheme == "mailto") QDesktopServices::openUrl(target);
    });
}

}  // namespace ovrin
