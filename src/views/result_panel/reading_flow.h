// What is read in the result panel, one below the other in a column of limited width: the card with the recognised
// text, then the conversation about it; what went wrong stands below either.
#pragma once

#include "base/published.h"
#include "views/components/reading_column.h"

namespace ovrin {

class ConversationTurns;
class OVErrorNote;
class ResultPanelViewModel;

class ReadingFlow final : public ReadingColumn {
    Q_OBJECT

public:
    // The view model outlives it; it lies in the area.
    ReadingFlow(ViewEnvironment& environment, ResultPanelViewModel& viewModel, OVScrollArea& area);

private:
    void bind();
    void showConversation();
    void showError();

    ResultPanelViewModel& viewModel_;
    OVScrollArea& area_;
    ConversationTurns* turns_;
    OVErrorNote* translationError_;
    OVErrorNote* conversationError_;
    Subscription conversation_;
    Subscription thinking_;
    Subscription error_;
    Subscription newError_;
};

}  // namespace ovrin
