#include "views/input_translate/output_pane.h"

#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/blank_answer_note.h"
#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_pixel_loader.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "windows/input_translate_view_model.h"

namespace ovrin {

using theme::ColorToken;

OutputPane::OutputPane(ViewEnvironment& environment, InputTranslateViewModel& viewModel, QWidget* parent)
    : TextPane(environment, QStringLiteral("译文"), parent),
      viewModel_(viewModel),
      loader_(new OVPixelLoader(environment, ColorToken::accentInk)),
      thinking_(new OVLabel(environment, {}, theme::font::caption, ColorToken::ink3)),
      speak_(new OVIconButton(environment, OVIcon::volume, QStringLiteral("朗读"))),
      copy_(new OVIconButton(environment, OVIcon::copy, QStringLiteral("复制"))),
      area_(new OVScrollArea(environment)),
      placeholder_(new OVLabel(environment, QStringLiteral("翻译结果会流式显示在这里"), theme::font::body,
                               ColorToken::ink3, OVLabel::Lines::wrapped)),
      text_(new OVStreamingText(environment, OVStreamingText::Mode::plain)),
      blank_(makeBlankAnswerNote(environment)),
      error_(new OVErrorNote(environment)) {
    text_->setAccessibleName(QStringLiteral("译文"));
    addBesideTitle(loader_);
    addBesideTitle(thinking_);
    addAction(copy_);
    addAction(speak_);
    area_->setContent(makeContent());
    area_->keepInSight(*text_);
    setContent(area_, 0);
    bind();
}

QWidget* OutputPane::makeContent() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    // Both texts begin on one line with those of the other half.
    column->setContentsMargins(padding, 5, padding - scrollBarMargin, 4);
    placeholder_->setContentsMargins(0, 1, 0, 0);
    blank_->setContentsMargins(0, 1, 0, 0);
    column->setSpacing(12);
    column->addWidget(placeholder_);
    column->addWidget(text_);
    column->addWidget(blank_);
    column->addWidget(error_);
    column->addStretch();
    return content;
}

void OutputPane::bind() {
    connect(copy_, &QAbstractButton::clicked, this, [this] { viewModel_.copyTranslation(); });
    connect(speak_, &QAbstractButton::clicked, this, [this] { viewModel_.speakTranslation(); });
    changes_ = watch(
        std::tie(viewModel_.outputText(), viewModel_.isStreaming(), viewModel_.isBlank(), viewModel_.errorMessage()),
        [this] { refresh(); });
    thinkingChanges_ =
        watch(viewModel_.thinking(), [this](const std::string& words) { thinking_->setText(toQString(words)); });
    newError_ = viewModel_.errorMessage().onDidChange([this](const auto& message) {
        // The translation is read from its beginning while it comes; what ended it stands below.
        if (message) {
            area_->followBottom();
        } else {
            area_->stopFollowing();
        }
    });
}

void OutputPane::refresh() {
    using enum OVStreamingText::Progress;
    const std::string& output = viewModel_.outputText().value();
    const std::optional<std::string>& message = viewModel_.errorMessage().value();
    const bool isStreaming = viewModel_.isStreaming().value();
    loader_->setVisible(isStreaming);
    const bool isBlank = viewModel_.isBlank().value();
    placeholder_->setVisible(output.empty() && !message && !isBlank);
    const bool hasText = !output.empty() && !isBlank;
    text_->setVisible(hasText);
    blank_->setVisible(isBlank);
    text_->setLanguage(viewModel_.outputLanguage());
    text_->setTextSoFar(output, isStreaming ? streaming : finished);
    error_->setMessage(message);
    copy_->setEnabled(hasText);
    speak_->setEnabled(hasText);
}

}  // namespace ovrin
