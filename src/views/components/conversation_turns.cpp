#include "views/components/conversation_turns.h"

#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "views/components/reading_column.h"
#include "views/components/tab_order.h"

namespace ovrin {

namespace {
constexpr int spacing = 20;
}  // namespace

ConversationTurns::ConversationTurns(ViewEnvironment& environment, ReadingColumn& column,
                                     ConversationTurnView::Style style)
    : OVWidget(environment), column_(column), style_(std::move(style)), layout_(new QVBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(spacing);
    hide();
}

void ConversationTurns::show(std::span<const Turn> turns) {
    using Progress = OVStreamingText::Progress;
    const auto isSame = [](const Shown& shown, const Turn& turn) {
        return shown.id == turn.id && shown.question == turn.question;
    };
    const auto firstOther = std::ranges::mismatch(shown_, turns, isSame).in1;
    std::for_each(firstOther, shown_.end(), [](const Shown& gone) { delete gone.view; });
    shown_.erase(firstOther, shown_.end());
    for (std::size_t i = 0; i < turns.size(); ++i) {
        if (i == shown_.size()) shown_.push_back(add(turns[i]));
        shown_[i].view->setAnswer(turns[i].answer, turns[i].isStreaming ? Progress::streaming : Progress::finished,
                                  turns[i].isBlank);
    }
    setVisible(!turns.empty());
}

void ConversationTurns::setThinking(const std::string& words) {
    if (!shown_.empty()) shown_.back().view->setThinking(words);
}

ConversationTurns::Shown ConversationTurns::add(const Turn& turn) {
    auto* view = new ConversationTurnView(environment(), turn.question, style_);
    column_.makeReadable(view->question());
    column_.makeReadable(view->answer());
    view->answer().setAccessibleName(QStringLiteral("回答 %1").arg(shown_.size() + 1));
    layout_->addWidget(view);
    // By themselves they would come after all that has been there before.
    setTabOrder(shown_.empty() ? tabStopBefore(*this) : &shown_.back().view->answer(), &view->question());
    setTabOrder(&view->question(), &view->answer());
    return {turn.id, std::string(turn.question), view};
}

}  // namespace ovrin
