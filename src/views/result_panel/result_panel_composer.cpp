#include "views/result_panel/result_panel_composer.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "theme/ov_icon.h"
#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_text_editor.h"
#include "views/result_panel/send_button.h"
#include "windows/result_panel_view_model.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 20;
constexpr int horizontalPadding = 14;
constexpr int verticalPadding = 5;
constexpr int mostLines = 5;
constexpr int lineHeight = 21;

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

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

ResultPanelComposer::ResultPanelComposer(ViewEnvironment& environment, ResultPanelViewModel& viewModel, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      frame_(new QWidget),
      field_(new OVTextEditor(environment, {})),
      send_(new SendButton(environment)),
      clear_(new OVIconButton(environment, OVIcon::trash, QStringLiteral("清除对话"))) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 8, 16, 16);
    column->setSpacing(10);
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    addSuggestions(*row);
    column->addLayout(row);

    auto* inner = new QHBoxLayout(frame_);
    inner->setContentsMargins(horizontalPadding, verticalPadding, verticalPadding + 1, verticalPadding);
    inner->setSpacing(8);
    inner->addWidget(field_, 1, Qt::AlignVCenter);
    inner->addWidget(send_, 0, Qt::AlignBottom);
    column->addWidget(frame_);
    field_->installEventFilter(this);
    bind();
    takeOverPrompt();
    refresh();
    fitField();
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
    connect(send_, &QAbstractButton::clicked, this, &ResultPanelComposer::submitPrompt);
    connect(field_, &QTextEdit::textChanged, this, [this] {
        viewModel_.setFollowUpPrompt(field_->toPlainText().toStdString());
        fitField();
    });
    const auto refreshing = [this](const auto& /*value*/) { refresh(); };
    subscriptions_.push_back(viewModel_.followUpPrompt().onDidChange([this](const std::string&) {
        takeOverPrompt();
        refresh();
    }));
    subscriptions_.push_back(viewModel_.isAIStreaming().onDidChange(refreshing));
    subscriptions_.push_back(viewModel_.followUps().onDidChange(refreshing));
    subscriptions_.push_back(viewModel_.selectedAIAction().onDidChange(refreshing));
    subscriptions_.push_back(viewModel_.aiOutput().onDidChange(refreshing));
}

// The model empties the field when the question is on its way.
void ResultPanelComposer::takeOverPrompt() {
    field_->replaceText(toQString(viewModel_.followUpPrompt().value()));
}

void ResultPanelComposer::refresh() {
    const bool hasConversation = viewModel_.hasConversation();
    field_->setPlaceholder(hasConversation ? QStringLiteral("继续追问") : QStringLiteral("追问识别结果"));
    send_->setEnabled(viewModel_.canSubmitPrompt());
    clear_->setVisible(hasConversation);
    const bool isAnswering = viewModel_.isAIStreaming().value() || viewModel_.isFollowUpStreaming();
    for (OVButton* const suggestion : suggestions_) suggestion->setEnabled(!isAnswering);
}

void ResultPanelComposer::fitField() {
    const int margins = static_cast<int>(2 * field_->document()->documentMargin());
    const int wanted = static_cast<int>(std::ceil(field_->document()->size().height()));
    field_->setFixedHeight(std::clamp(wanted, lineHeight + margins, mostLines * lineHeight + margins));
}

void ResultPanelComposer::focusField() {
    field_->setFocus(Qt::OtherFocusReason);
}

void ResultPanelComposer::submit(std::string question, AIAction action) {
    viewModel_.submit(std::move(question), action);
    emit submitted();
}

void ResultPanelComposer::submitPrompt() {
    if (viewModel_.canSubmitPrompt()) submit(viewModel_.followUpPrompt().value(), AIAction::explain);
}

bool ResultPanelComposer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    if (event->type() == QEvent::Resize) fitField();
    if (event->type() != QEvent::KeyPress) return OVWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (isReturn(*key) && !(key->modifiers() & Qt::ShiftModifier)) {
        submitPrompt();
        return true;
    }
    if (key->key() == Qt::Key_PageUp || key->key() == Qt::Key_PageDown) {
        emit scrollKeyPressed(key);
        return true;
    }
    return false;
}

void ResultPanelComposer::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF field = frame_->geometry();
    const double radius = std::min(cornerRadius, field.height() / 2);
    fillRounded(painter, field, radius, color(ColorToken::canvas));
    QColor line = color(field_->hasFocus() ? ColorToken::accent : ColorToken::ink);
    line.setAlphaF(field_->hasFocus() ? 0.75F : environment().isDark() ? 0.12F : 0.1F);
    painter.setPen(QPen(line, field_->hasFocus() ? 1.25 : 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(field.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

}  // namespace ovrin
