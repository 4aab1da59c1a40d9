// The free chat from its first question on: a header, the turns, what went wrong, and the field for the next question.
#pragma once

#include <string>
#include <vector>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class ConversationTurns;
class DirectAIViewModel;
class OVScrollArea;
class OVTextEditor;
class QuestionComposer;

class DirectAIConversation final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    DirectAIConversation(ViewEnvironment& environment, DirectAIViewModel& viewModel,
                         const Published<std::string>& brandImage);

    OVTextEditor& field() const;

signals:
    void closeRequested();

private:
    QWidget* makeHeader(const Published<std::string>& brandImage);
    QWidget* makeReading();
    QWidget* makeComposer();
    void showTurns();
    void refreshComposer();

    DirectAIViewModel& viewModel_;
    OVScrollArea* area_;
    ConversationTurns* turns_ = nullptr;
    QuestionComposer* composer_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
