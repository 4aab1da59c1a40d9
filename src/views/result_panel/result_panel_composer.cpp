#include "views/result_panel/result_panel_composer.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <array>
#include <string>

#include "base/watch.h"
#include "theme/ov_icon.h"
#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_text_editor.h"
#include "views/components/question_composer.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

namespace {

struct Suggestion {
    const char* title;
    const char* question;
    AIAction action;
    OVIcon icon;
};

constexpr std::array suggestions{
    Suggestion{"问问 AI", "这是什么？", AIAction::whatIsThis, OVIcon::sparkles},
    Suggestion{"提炼重点", "请提炼这里最重要的信息，并告诉我为什么值得关注。", AIAction::summarize, OVIcon::alignLeft},
    Suggestion{"属于哪个行业", "这段内容或对象更可能属于哪个行业？请简要说明判断依据。", AIAction::explain,
               OVIcon::search},
};

}  // namespace

ResultPanelComposer::ResultPanelComposer(ViewEnvironment& environment, ResultPanelViewModel& viewModel, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      composer_(new QuestionComposer(environment, QStringLiteral("发送问题"))),
      clear_(new OVIconButton(environment, OVIcon::trash, QStringLiteral("清除对话"))) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 8, 16, 16);
    column->setSpacing(10);
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    addSuggestions(*row);
    column->addLayout(row);
    column->addWidget(composer_);
    bind();
}

void ResultPanelComposer::addSuggestions(QHBoxLayout& row) {
    for (const Suggestion& suggestion : suggestions) {
        auto* button = new OVButton(environment(), QString::fromUtf8(suggestion.title), OVButton::Kind::secondary,
                                    OVButton::Density::compact);
        button->setOVIcon(suggestion.icon);
        connect(button, &QAbstractButton::clicked, this,
                [this, &suggestion] { submit(suggestion.question, suggestion.action); });
        row.addWidget(button);
        suggestions_.push_back(button);
    }
    row.addStretch();
    row.addWidget(clear_);
    connect(clear_, &QAbstractButton::clicked, this, [this] { viewModel_.closeAIConversation(); });
}

void ResultPanelComposer::bind() {
    connect(composer_, &QuestionComposer::sendRequested, this, &ResultPanelComposer::submitPrompt);
    connect(composer_, &QuestionComposer::scrollKeyPressed, this, &ResultPanelComposer::scrollKeyPressed);
    connect(&composer_->field(), &QTextEdit::textChanged, this,
            [this] { viewModel_.setFollowUpPrompt(composer_->field().toPlainText().toStdString()); });
    // The model empties the field when the question is on its way.
    prompt_ = watch(viewModel_.followUpPrompt(),
                    [this](const std::string& prompt) { composer_->field().replaceText(toQString(prompt)); });
    changes_ = watch(std::tie(viewModel_.followUpPrompt(), viewModel_.isAIStreaming(), viewModel_.followUps(),
                              viewModel_.selectedAIAction(), viewModel_.aiOutput()),
                     [this] { refresh(); });
}

void ResultPanelComposer::refresh() {
    const bool hasConversation = viewModel_.hasConversation();
    composer_->field().setPlaceholder(hasConversation ? QStringLiteral("继续追问") : QStringLiteral("追问识别结果"));
    composer_->setCanSend(viewModel_.canSubmitPrompt());
    clear_->setVisible(hasConversation);
    const bool isAnswering = viewModel_.isAIStreaming().value() || viewModel_.isFollowUpStreaming();
    for (OVButton* const suggestion : suggestions_) suggestion->setEnabled(!isAnswering);
}

void ResultPanelComposer::focusField() {
    composer_->field().setFocus(Qt::OtherFocusReason);
}

void ResultPanelComposer::submit(const std::string& question, AIAction action) {
    viewModel_.submit(question, action);
    emit submitted();
}

void ResultPanelComposer::submitPrompt() {
    if (viewModel_.canSubmitPrompt()) submit(viewModel_.followUpPrompt().value(), AIAction::explain);
}

}  // namespace ovrin
