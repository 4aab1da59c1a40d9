#include "views/result_panel/reading_flow.h"

#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/conversation_turns.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "views/result_panel/result_card.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

ReadingFlow::ReadingFlow(ViewEnvironment& environment, ResultPanelViewModel& viewModel, OVScrollArea& area)
    : ReadingColumn(environment, area),
      viewModel_(viewModel),
      area_(area),
      turns_(new ConversationTurns(
          environment, *this,
          {.waitingWords = QStringLiteral("正在理解这段内容"), .answerLanguage = viewModel.replyLanguage()})),
      translationError_(new OVErrorNote(environment)),
      conversationError_(new OVErrorNote(environment)) {
    auto* card = new ResultCard(environment, viewModel);
    makeReadable(card->translation());
    makeReadable(card->original());
    for (QWidget* const widget : std::initializer_list<QWidget*>{card, translationError_, turns_, conversationError_}) {
        column().addWidget(widget);
    }
    bind();
}

void ReadingFlow::bind() {
    conversation_ = watch(std::tie(viewModel_.selectedAIAction(), viewModel_.initialQuestion(), viewModel_.aiOutput(),
                                   viewModel_.isAIStreaming(), viewModel_.isAIOutputBlank(), viewModel_.followUps()),
                          [this] { showConversation(); });
    thinking_ =
        watch(viewModel_.conversationThinking(), [this](const std::string& words) { turns_->setThinking(words); });
    error_ = watch(std::tie(viewModel_.followUps(), viewModel_.errorMessage()), [this] { showError(); });
    newError_ = viewModel_.errorMessage().onDidChange([this](const std::optional<std::string>& message) {
        if (message) area_.reveal(translationError_->isHidden() ? *conversationError_ : *translationError_);
    });
}

void ReadingFlow::showError() {
    const bool isOfTranslation = viewModel_.failed() == ResultPanelViewModel::Failed::translation;
    const std::optional<std::string>& message = viewModel_.errorMessage().value();
    translationError_->setMessage(isOfTranslation ? message : std::nullopt);
    // Below later turns it would seem to be theirs, whose failures stand in the answers.
    const bool isPast = isOfTranslation || !viewModel_.followUps()->empty();
    conversationError_->setMessage(isPast ? std::nullopt : message);
}

void ReadingFlow::showConversation() {
    std::vector<ConversationTurns::Turn> turns;
    const std::string& question = viewModel_.initialQuestion().value();
    if (viewModel_.selectedAIAction().value() && !question.empty()) {
        turns.push_back({.id = {},
                         .question = question,
                         .answer = viewModel_.aiOutput().value(),
                         .isStreaming = viewModel_.isAIStreaming().value(),
                         .isBlank = viewModel_.isAIOutputBlank().value()});
    }
    for (const FollowUpMessage& message : viewModel_.followUps().value())
        turns.push_back({message.id, message.question, message.answer, message.isStreaming, message.isBlank});
    turns_->show(turns);
}

}  // namespace ovrin
