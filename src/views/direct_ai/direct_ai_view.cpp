#include "views/direct_ai/direct_ai_view.h"

#include <QVBoxLayout>

#include "views/components/ov_text_editor.h"
#include "views/direct_ai/direct_ai_bar.h"
#include "views/direct_ai/direct_ai_conversation.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

DirectAIView::DirectAIView(ViewEnvironment& environment, DirectAIViewModel& viewModel,
                           const Published<std::string>& brandImage)
    : OVWidget(environment),
      viewModel_(viewModel),
      bar_(new DirectAIBar(environment, viewModel, brandImage)),
      conversation_(new DirectAIConversation(environment, viewModel, brandImage)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar_);
    layout->addWidget(conversation_);
    connect(conversation_, &DirectAIConversation::closeRequested, this, &DirectAIView::closeRequested);
    turns_ = viewModel.turns().onDidChange([this](const auto& turns) {
        if (turns.empty() == bar_->isHidden()) showBarOrConversation();
    });
    showBarOrConversation();
}

void DirectAIView::showBarOrConversation() {
    const bool isConversation = !viewModel_.turns()->empty();
    bar_->setVisible(!isConversation);
    conversation_->setVisible(isConversation);
    focusField();
}

void DirectAIView::focusField() {
    OVTextEditor& field = bar_->isHidden() ? conversation_->field() : bar_->field();
    field.setFocus(Qt::OtherFocusReason);
}

}  // namespace ovrin
