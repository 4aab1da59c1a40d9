#include "views/result_panel/conversation_turn_view.h"

#include <QVBoxLayout>

#include "views/components/question_bubble.h"
#include "views/result_panel/busy_note.h"

namespace ovrin {

ConversationTurnView::ConversationTurnView(ViewEnvironment& environment, std::string_view question,
                                           std::string_view answerLanguage, QWidget* parent)
    : OVWidget(environment, parent),
      question_(new QuestionBubble(environment, question)),
      answer_(new OVStreamingText(environment, OVStreamingText::Mode::markdown)),
      waiting_(new BusyNote(environment, QStringLiteral("正在理解这段内容"))) {
    answer_->setLanguage(answerLanguage);
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

OVStreamingText& ConversationTurnView::question() const {
    return question_->text();
}

}  // namespace ovrin
