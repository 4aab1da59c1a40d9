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
    : OVWidget(environment), viewModel_(viewModel), area_(area), error_(new OVErrorNote(environment)) {
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
    turns_ = new QVBoxLayout;
    turns_->setSpacing(spacing + 4);
    column_->addLayout(turns_);
    column_->addWidget(error_);
    column_->addStretch();
    bind();
    showFirstTurn();
    showFollowUps(viewModel.followUps().value());
    error_->setMessage(viewModel.errorMessage().value());
}

void ReadingFlow::bind() {
    const auto showingFirst = [this](const auto& /*value*/) { showFirstTurn(); };
    subscriptions_.push_back(viewModel_.selectedAIAction().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.initialQuestion().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.aiOutput().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.isAIStreaming().onDidChange(showingFirst));
    subscriptions_.push_back(viewModel_.followUps().onDidChange(
        [this](const std::vector<FollowUpMessage>& followUps) { showFollowUps(followUps); }));
    subscriptions_.push_back(viewModel_.errorMessage().onDidChange(
        [this](const std::optional<std::string>& message) { error_->setMessage(message); }));
}
