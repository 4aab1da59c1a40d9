// Everything inside the window of the free chat: the bar while there are no turns, else the conversation.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class DirectAIBar;
class DirectAIConversation;
class DirectAIViewModel;

class DirectAIView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    DirectAIView(ViewEnvironment& environment, DirectAIViewModel& viewModel, const Published<std::string>& brandImage);

    // Gives the keyboard to the field in which the next question is typed.
    void focusField();

signals:
    void closeRequested();

private:
    void showBarOrConversation();

    DirectAIViewModel& viewModel_;
    DirectAIBar* bar_;
    DirectAIConversation* conversation_;
    Subscription turns_;
};

}  // namespace ovrin
