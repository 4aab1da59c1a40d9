// What is read in the result panel, one below the other in a column of limited width: the card with the recognised
// text, then the conversation about it; what went wrong stands below either.
#pragma once

#include <vector>

#include "base/published.h"
#include "base/uuid.h"
#include "views/components/ov_widget.h"
#include "windows/result_panel_view_model.h"

class QVBoxLayout;

namespace ovrin {

class ConversationTurnView;
class OVErrorNote;
class OVScrollArea;
class OVStreamingText;

class ReadingFlow final : public OVWidget {
    Q_OBJECT

public:
    // The view model outlives it; it lies in the area.
    ReadingFlow(ViewEnvironment& environment, ResultPanelViewModel& viewModel, OVScrollArea& area);

private:
    struct FollowUp {
        Uuid id;
        ConversationTurnView* view;
    };

    void bind();
    void showFirstTurn();
    void showFollowUps(const std::vector<FollowUpMessage>& followUps);
    void showError();
    ConversationTurnView* addTurn(std::string_view question);
    void makeReadable(OVStreamingText& text);

    ResultPanelViewModel& viewModel_;
    OVScrollArea& area_;
    QVBoxLayout* column_;
    QVBoxLayout* turns_;
    OVErrorNote* translationError_;
    OVErrorNote* conversationError_;
    ConversationTurnView* firstTurn_ = nullptr;
    std::string firstQuestion_;  // what it shows
    std::vector<FollowUp> followUps_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
