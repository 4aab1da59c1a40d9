#include "views/components/conversation_turn_view.h"

#include <QVBoxLayout>

#include "views/components/busy_note.h"
#include "views/components/question_bubble.h"

namespace ovrin {

ConversationTurnView::ConversationTurnView(ViewEnvironment& environment, std::string_view question, const Style& style,
                                           QWidget* parent)
    : OVWidget(environment, parent),
      question_(new QuestionBubble(environment, question)),
      answer_(new OVStreamingText(environment, OVStreamingText::Mode::markdown)),
      waiting_(new BusyNote(environment, style.waitingWords)) {
    answer_->setLanguage(style.answerLanguage);
    answer_->hide();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(question_);
    column->addWidget(waiting_);
    column->addWidget(answer_);
}

void ConversationTurnView::setAnswer(std::string_view answer, OVStreamingText::Progress progress) {
    waiting_->setVisible(answer.empty() && progress == OVStreamingText::Progress::streaming);
    answer_->setVisible(!answer.empty());
    answer_->setTextSoFar(answer, progress);
}

void ConversationTurnView::setThinking(const std::string& words) {
    waiting_->setDetail(words);
}

OVStreamingText& ConversationTurnView::question() const {
    return question_->text();
}

}  // namespace ovrin
