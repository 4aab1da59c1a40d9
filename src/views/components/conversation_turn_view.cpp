#include "views/components/conversation_turn_view.h"

#include <QVBoxLayout>

#include "views/components/blank_answer_note.h"
#include "views/components/busy_note.h"
#include "views/components/ov_label.h"
#include "views/components/question_bubble.h"

namespace ovrin {

ConversationTurnView::ConversationTurnView(ViewEnvironment& environment, std::string_view question, const Style& style,
                                           QWidget* parent)
    : OVWidget(environment, parent),
      question_(new QuestionBubble(environment, question)),
      answer_(new OVStreamingText(environment, OVStreamingText::Mode::markdown)),
      waiting_(new BusyNote(environment, style.waitingWords)),
      blank_(makeBlankAnswerNote(environment)) {
    answer_->setLanguage(style.answerLanguage);
    answer_->hide();
    blank_->hide();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(question_);
    column->addWidget(waiting_);
    column->addWidget(answer_);
    column->addWidget(blank_);
}

void ConversationTurnView::setAnswer(std::string_view answer, OVStreamingText::Progress progress, bool isBlank) {
    waiting_->setVisible(answer.empty() && progress == OVStreamingText::Progress::streaming);
    answer_->setVisible(!answer.empty() && !isBlank);
    blank_->setVisible(isBlank);
    answer_->setTextSoFar(answer, progress);
}

void ConversationTurnView::setThinking(const std::string& words) {
    waiting_->setDetail(words);
}

OVStreamingText& ConversationTurnView::question() const {
    return question_->text();
}

}  // namespace ovrin
