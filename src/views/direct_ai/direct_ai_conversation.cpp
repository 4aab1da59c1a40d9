#include "views/direct_ai/direct_ai_conversation.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/conversation_turns.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_button.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_text_editor.h"
#include "views/components/question_composer.h"
#include "views/components/reading_column.h"
#include "views/direct_ai/draft_field.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

namespace {
constexpr int headerHeight = 48;
constexpr double markSize = 20;
const theme::FontStyle titleFont{13, theme::FontWeight::semibold, theme::FontDesign::standard};
}  // namespace

DirectAIConversation::DirectAIConversation(ViewEnvironment& environment, DirectAIViewModel& viewModel,
                                           const Published<std::string>& brandImage)
    : OVWidget(environment),
      viewModel_(viewModel),
      area_(new OVScrollArea(environment)),
      composer_(new QuestionComposer(environment, QStringLiteral("发送"))) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader(brandImage));
    area_->setContent(makeReading());
    column->addWidget(area_, 1);
    column->addWidget(makeComposer());
}

QWidget* DirectAIConversation::makeHeader(const Published<std::string>& brandImage) {
    auto* header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto* restart =
        new OVButton(environment(), QStringLiteral("新对话"), OVButton::Kind::secondary, OVButton::Density::compact);
    restart->setOVIcon(OVIcon::plus);
    connect(restart, &QAbstractButton::clicked, this, [this] { viewModel_.newConversation(); });
    auto* close = new OVIconButton(environment(), OVIcon::close, QStringLiteral("关闭"));
    connect(close, &QAbstractButton::clicked, this, &DirectAIConversation::closeRequested);

    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(16, 0, 10, 0);
    row->setSpacing(8);
    row->addWidget(new OVBrandMark(environment(), markSize, brandImage));
    row->addWidget(new OVLabel(environment(), QStringLiteral("TalkBox"), titleFont, theme::ColorToken::ink));
    row->addStretch();
    row->addWidget(restart);
    row->addWidget(close);
    return header;
}

QWidget* DirectAIConversation::makeReading() {
    auto* reading = new ReadingColumn(environment(), *area_);
    turns_ =
        new ConversationTurns(environment(), *reading,
                              {.waitingWords = QStringLiteral("正在想"), .answerLanguage = viewModel_.replyLanguage()});
    auto* error = new OVErrorNote(environment());
    reading->column().addWidget(turns_);
    reading->column().addWidget(error);
    subscriptions_.push_back(watch(viewModel_.turns(), [this](const auto& /*turns*/) { showTurns(); }));
    subscriptions_.push_back(
        watch(viewModel_.thinking(), [this](const std::string& words) { turns_->setThinking(words); }));
    subscriptions_.push_back(watch(viewModel_.errorMessage(),
                                   [error](const std::optional<std::string>& message) { error->setMessage(message); }));
    return reading;
}

QWidget* DirectAIConversation::makeComposer() {
    auto* frame = new QWidget;
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(16, 8, 16, 16);
    layout->addWidget(composer_);
    composer_->field().setPlaceholder(QStringLiteral("继续问"));
    connect(composer_, &QuestionComposer::sendRequested, this, [this] { viewModel_.send(); });
    connect(composer_, &QuestionComposer::scrollKeyPressed, this,
            [this](QKeyEvent* event) { QCoreApplication::sendEvent(area_, event); });
    subscriptions_.push_back(bindDraft(viewModel_, composer_->field()));
    subscriptions_.push_back(
        watch(std::tie(viewModel_.draft(), viewModel_.isStreaming()), [this] { refreshComposer(); }));
    // A new question is what the user wants to see; so is its answer as it comes.
    subscriptions_.push_back(viewModel_.isStreaming().onDidChange([this](bool isStreaming) {
        if (isStreaming) area_->followBottom();
    }));
    return frame;
}

void DirectAIConversation::showTurns() {
    std::vector<ConversationTurns::Turn> shown;
    for (const auto& [id, question, answer, isStreaming, isBlank] : viewModel_.turns().value())
        shown.push_back({id, question, answer, isStreaming, isBlank});
    turns_->show(shown);
}

void DirectAIConversation::refreshComposer() {
    composer_->setCanSend(viewModel_.canSend());
}

OVTextEditor& DirectAIConversation::field() const {
    return composer_->field();
}

}  // namespace ovrin
